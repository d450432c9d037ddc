#include "record/annotations.h"
#include "record/cross_annotations.h"
#include "record/record_fixture.h"

namespace fe_db_tests {

namespace {

/// Each source in snapshots/ carries what is recorded of it. With FE_DB_UPDATE_SNAPSHOTS set, the
/// sources are rewritten; read the difference as code.
class AnnotatedSource : public RecordTest, public testing::WithParamInterface<std::string> {
 protected:
  /// Of a source that begins with `// References` or `// Properties` only these.
  std::vector<Annotation> annotations(const std::string& source) const {
    const std::string facts = outputEnding(".comp.db");
    const std::string path = (sources() / GetParam()).string();
    if (source.starts_with("// References")) {
      return readCrossAnnotations(facts, path, CrossFacts::references);
    }
    if (source.starts_with("// Properties")) {
      return readCrossAnnotations(facts, path, CrossFacts::properties);
    }
    return readAnnotations(outputEnding(".pp.db"), facts, path, sources().string(),
                           readFile(outputEnding(".i")));
  }
};

std::vector<std::string> snapshotNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(SNAPSHOTS)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with('.')) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST_P(AnnotatedSource, IsRecordedAsItsAnnotationsSay) {
  const std::filesystem::path snapshot = std::filesystem::path(SNAPSHOTS) / GetParam();
  const std::string annotated = readFile(snapshot);
  const std::string source = withoutAnnotations(annotated);
  write(GetParam(), source);
  std::vector<std::string> command{"--keep-preprocessed", "--", "gcc"};
  const std::string standard = GetParam().ends_with("14.cpp") ? "-std=c++14" : "-std=c++20";
  if (GetParam().ends_with(".cpp")) command.insert(command.end(), {"-x", "c++", standard});
  command.insert(command.end(), {"-DFROM_COMMAND_LINE=7", "-c", GetParam()});
  recordQuietly(command);

  const std::string actual = annotate(source, annotations(source));
  if (std::getenv("FE_DB_UPDATE_SNAPSHOTS") != nullptr) {
    std::ofstream(snapshot, std::ios::binary) << actual;
  } else {
    EXPECT_EQ(actual, annotated);
  }
}

INSTANTIATE_TEST_SUITE_P(Snapshots, AnnotatedSource, testing::ValuesIn(snapshotNames()),
                         [](const auto& test) {
                           std::string name = test.param;
                           std::replace(name.begin(), name.end(), '.', '_');
                           return name;
                         });

}  // namespace

}  // namespace fe_db_tests
