#include <map>
#include <set>

#include "fe_database/compilation_database/columns.h"
#include "fe_db/compilation_data_merger.h"
#include "tests/support/database_fixture.h"

/// Every column of every table goes through the library with a value of its own. The columns are
/// those of the list, so a new one is tested without a new line here; what does not come out as it
/// went in is named.
namespace fe_db_tests {
namespace {

using Values = std::map<std::string, std::string>;  ///< by "Table.Column"

/// What a column of the one row of its table holds. References are to the one row of theirs.
template <class U>
std::string valueFor(int number, bool flag) {
  if constexpr (std::is_same_v<U, bool>) return flag ? "1" : "0";
  if constexpr (std::is_same_v<U, std::string>) return "text" + std::to_string(number);
  if constexpr (isReference<U> || std::is_same_v<U, EntityKind>) return "1";  // a function's
  return std::to_string(number);
}

template <class T>
void addValues(Values& values, bool flag) {
  eachColumn<T>([&](const auto& column) {
    using U = typename std::decay_t<decltype(column)>::Value;
    const std::string name = std::string(TableColumns<T>::kName) + '.' + column.name;
    const int number = 100 + static_cast<int>(values.size());
    values[name] = column.has(kId) ? "1" : valueFor<U>(number, flag);
  });
  // A number in the list, and a flag in the element.
  if constexpr (std::is_same_v<T, File>) values["File.Huge"] = flag ? "1" : "0";
}

struct EveryColumn : CompilationTest, testing::WithParamInterface<bool> {
  EveryColumn() {
    StoredElements::each([this]<class T>() { addValues<T>(stored, GetParam()); });
  }

  using StoredElements =
      decltype(concatenate(TypeList<File, Identifier, Macro>{}, CompilationOnlyElements{}));

  /// An empty file with the rows, under the path.
  void makeFile(const std::string& path, const Values& values) const {
    std::filesystem::remove(path);
    fe_db_tools::createCompilationDatabase(path, fe_db_tools::KeyIndexes::no);
    if (values.empty()) return;
    StoredElements::each([&]<class T>() {
      std::string names, texts;
      eachColumn<T>([&](const auto& column) {
        const std::string comma = names.empty() ? "" : ", ";
        names += comma + column.name;
        texts +=
            comma + "'" + values.at(std::string(TableColumns<T>::kName) + '.' + column.name) + "'";
      });
      fe_db_tests::execute(path, std::string("INSERT INTO ") + TableColumns<T>::kName + " (" +
                                     names + ") VALUES (" + texts + ")");
    });
  }

  /// What the one row of each table holds now.
  static Values read(const std::string& path) {
    Values values;
    StoredElements::each([&]<class T>() {
      eachColumn<T>([&](const auto& column) {
        const std::string table = TableColumns<T>::kName;
        std::string text =
            fe_db_tests::rows(path, std::string("SELECT ") + column.name + " FROM " + table);
        if (!text.empty()) text.pop_back();
        values[table + '.' + column.name] = text;
      });
    });
    return values;
  }

  /// Names count each field, enum constant and label that bears them, and know their uses.
  void countNames(Values& values, int rows) const {
    constexpr int kUses = 16 | 32 | 64 | 128;
    values["Identifier.Count"] = std::to_string(std::stoi(values["Identifier.Count"]) + 3 * rows);
    values["Identifier.Kind"] = std::to_string(std::stoi(stored.at("Identifier.Kind")) | kUses);
  }

  void merge(const std::string& target, const std::string& source) const {
    orvalesca::databases_merger::CompilationDataMerger to(target), from(source);
    CompilationDatabase& database = to.openDB();
    to.beginTransaction();
    to.loadDataFromDB();
    from.openDB();
    from.loadDataFromDB();
    to.mergeCompilationTables(from);
    to.truncateDataFromDB();
    to.saveToDB();
    EXPECT_TRUE(database.commitTransaction());
  }

  Values stored;
};

TEST_P(EveryColumn, ComesThroughALoadAndASave) {
  makeFile(compFile, stored);
  openAgain();
  data->setDataNeededForDbLink();
  ASSERT_TRUE(data->loadFromDB(/*fromCompDb=*/true));
  data->resetIds(db());
  db().disconnect();
  makeFile(compFile, {});
  ASSERT_TRUE(db().quick_connect(false));
  ASSERT_TRUE(data->saveToCompDB());

  Values expected = stored;
  countNames(expected, 1);
  expected["Function.RefCount"] = "0";  // counts of functions come from the front end alone
  // No load reads this table.
  eachColumn<TypeReference>(
      [&](const auto& column) { expected[std::string("TypeReference.") + column.name] = ""; });
  EXPECT_EQ(read(compFile), expected);
}

TEST_P(EveryColumn, ComesThroughMerges) {
  const std::string source = path("source.db");
  makeFile(source, stored);
  Values expected = stored;
  countNames(expected, 1);
  expected["Function.RefCount"] = "0";
  merge(compFile, source);
  EXPECT_EQ(read(compFile), expected);

  // A second time: counts add up, all else stays.
  merge(compFile, source);
  for (const char* count : {"Macro.RefCount", "Type.RefCount", "Type.RefTagCount",
                            "Variable.RefCount", "Field.RefCount"}) {
    expected[count] = std::to_string(2 * std::stoi(stored[count]));
  }
  expected["Identifier.Count"] = std::to_string(2 * std::stoi(stored["Identifier.Count"]) + 6);
  // Ids of these go on above the old ones.
  for (auto& [name, value] : expected) {
    const bool isReference = name.ends_with("Id") || name == "TypeReference.DeclaredType";
    if (isReference && value == "1") value = read(compFile).at(name);
  }
  EXPECT_EQ(read(compFile), expected);
}

INSTANTIATE_TEST_SUITE_P(Flags, EveryColumn, testing::Bool(),
                         [](const auto& test) { return test.param ? "Set" : "Clear"; });

}  // namespace
}  // namespace fe_db_tests
