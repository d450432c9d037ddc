#include "record/annotations.h"

#include <sqlite3.h>

#include <algorithm>
#include <sstream>

#include "support/sql_rows.h"

namespace fe_db_tests {

namespace {

constexpr char kLead[] = "//";
constexpr char kLeadWithColumn[] = "//@";

// Each query: line, column, length of what is pointed at, text; of the file with path ?1.
constexpr const char* kPreprocessingQueries[] = {
    "SELECT DeclLineNum, DeclColNum, length(Name), 'Macro \"' || Text || '\"' ||"
    " iif(Value IS NULL, '', ' = ' || Value || iif(ValueIsSigned, '', 'u')) ||"
    " iif(IsObjectLike, '', ' functionLike') || iif(IsVariadic, ' variadic', '') ||"
    " ' refs=' || RefCount"
    " FROM Macro JOIN Identifier USING (IdentifierId) JOIN File ON FileId = DeclFileId"
    " WHERE Path = ?1",

    "SELECT LineNum, ColNum, length(Name), 'Invocation of ' || Name || ' from line ' ||"
    " ifnull(DeclLineNum, '-') || ': \"' || slice(ppLineNum, ppStartColNum, ppEndColNum) || '\"'"
    " FROM MacroInvocation JOIN Macro USING (MacroId) JOIN Identifier USING (IdentifierId)"
    " JOIN File USING (FileId) WHERE Path = ?1",

    "SELECT LineNum, ColNum, length(MacroCall), 'Expansion \"' || ExpandedCode || '\"'"
    " FROM MacroExpansion JOIN File USING (FileId) WHERE Path = ?1",

    "SELECT i.LineNum, i.ColNum, 1, 'Origin \"' || TokenString || '\" ' || iif(o.FileId IS NULL,"
    " iif(o.ColNum = 1, 'command line', 'predefined'), o.LineNum || ':' || o.ColNum) ||"
    " iif(IsParameter, ' parameter', '') || ' at +' || OffsetColumnInInvocation"
    " FROM MacroInvocationCodeOrigin o JOIN MacroInvocation i USING (MacroInvocationId)"
    " JOIN File f ON f.FileId = i.FileId WHERE Path = ?1 AND f.Path LIKE '%origins.%'",
};

constexpr const char* kCompilationQueries[] = {
    "SELECT t.DeclLineNum, t.DeclColNum, iif(t.Unnamed, 1, length(i.Name)), 'Type kind=' || t.Kind"
    " || iif(t.Unnamed, ' unnamed', '') || iif(t.Local, ' local', '') ||"
    " iif(t.Incomplete, ' incomplete', '') || ' refs=' || t.RefCount || ' tagRefs=' ||"
    " t.RefTagCount || ifnull(' -> ' || ri.Name, '')"
    " FROM Type t JOIN Identifier i USING (IdentifierId) JOIN File ON FileId = t.DeclFileId"
    " LEFT JOIN TypeReference ON DeclaredType = t.TypeId LEFT JOIN Type r ON r.TypeId ="
    " ReferencedType LEFT JOIN Identifier ri ON ri.IdentifierId = r.IdentifierId WHERE Path = ?1",

    "SELECT v.DeclLineNum, v.DeclColNum, length(i.Name), 'Variable of ' || ifnull(ti.Name, '-') ||"
    " iif(isDefined, ' defined', ' declared') || ' linkage=' || Linkage || ' refs=' || v.RefCount"
    " || ifnull(' external=' || ei.Name, '')"
    " FROM Variable v JOIN Identifier i USING (IdentifierId) JOIN File ON FileId = v.DeclFileId"
    " LEFT JOIN Type t ON t.TypeId = v.TypeId LEFT JOIN Identifier ti ON ti.IdentifierId ="
    " t.IdentifierId LEFT JOIN ExternalIdentifier e ON EntityId = VariableId AND e.Kind = 0"
    " LEFT JOIN Identifier ei ON ei.IdentifierId = e.IdentifierId WHERE Path = ?1",

    "SELECT DeclLineNum, DeclColNum, length(s.Name), 'Function ' || replace(i.Name, ?2, '') ||"
    " iif(isDefined, ' defined', ' declared') || iif(isSpecial, ' special', '') || ' linkage=' ||"
    " Linkage || ' refs=' || RefCount || ifnull(' external=' || ei.Name, '') ||"
    " iif(Effect = 2, '', iif(Effect = 0, ' no effect', ' has effects'))"
    " FROM Function f JOIN Identifier i USING (IdentifierId) JOIN Identifier s ON"
    " s.IdentifierId = SourceNameId JOIN File ON FileId = DeclFileId"
    " LEFT JOIN ExternalIdentifier e ON EntityId = FunctionId AND e.Kind = 1"
    " LEFT JOIN Identifier ei ON ei.IdentifierId = e.IdentifierId WHERE Path = ?1",

    "SELECT DeclLineNum, DeclColNum, length(Name), 'Field refs=' || RefCount"
    " FROM Field JOIN Identifier USING (IdentifierId) JOIN File ON FileId = DeclFileId"
    " WHERE Path = ?1",

    "SELECT DeclLineNum, DeclColNum, length(Name), 'EnumConstant'"
    " FROM EnumConstant JOIN Identifier USING (IdentifierId) JOIN File ON FileId = DeclFileId"
    " WHERE Path = ?1",

    "SELECT DeclLineNum, DeclColNum, length(Name), 'Label'"
    " FROM Label JOIN Identifier USING (IdentifierId) JOIN File ON FileId = DeclFileId"
    " WHERE Path = ?1",

    "SELECT LineNum, ColNum, length(es.Name), 'Call of ' || es.Name || ' by ' || rs.Name ||"
    " iif(IsValueUsed, ', used', ', dropped')"
    " FROM CallPoint JOIN File USING (FileId) JOIN Function r ON r.FunctionId = CallerId"
    " JOIN Identifier rs ON rs.IdentifierId = r.SourceNameId JOIN Function e ON"
    " e.FunctionId = CalleeId JOIN Identifier es ON es.IdentifierId = e.SourceNameId"
    " WHERE Path = ?1",
};

/// The SQL function slice(line, column, end): a part of the preprocessed text.
void slice(sqlite3_context* context, int, sqlite3_value** arguments) {
  const auto& text = *static_cast<const std::string*>(sqlite3_user_data(context));
  std::size_t lineStart = 0;
  for (int line = sqlite3_value_int(arguments[0]); line > 1; --line) {
    lineStart = text.find('\n', lineStart) + 1;
  }
  const auto column = static_cast<std::size_t>(sqlite3_value_int(arguments[1]));
  const auto end = static_cast<std::size_t>(sqlite3_value_int(arguments[2]));
  const std::string part = text.substr(lineStart + column - 1, end - column);
  sqlite3_result_text(context, part.c_str(), static_cast<int>(part.size()), SQLITE_TRANSIENT);
}

std::string onOneLine(std::string text) {
  for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at)) {
    text.replace(at, 1, "\\n");
  }
  return text;
}

template <std::size_t count>
void readTables(const std::string& database, const char* const (&queries)[count],
                const std::string& sourceFile, const std::string& directory,
                const std::string& preprocessed, std::vector<Annotation>& result) {
  const RawConnection connection(database);
  sqlite3_create_function(connection.get(), "slice", 3, SQLITE_UTF8,
                          const_cast<std::string*>(&preprocessed), slice, nullptr, nullptr);
  for (const char* query : queries) {
    sqlite3_stmt* statement = nullptr;
    ASSERT_EQ(sqlite3_prepare_v2(connection.get(), query, -1, &statement, nullptr), SQLITE_OK)
        << query << ": " << sqlite3_errmsg(connection.get());
    sqlite3_bind_text(statement, 1, sourceFile.c_str(), -1, SQLITE_STATIC);
    if (sqlite3_bind_parameter_count(statement) > 1) {
      sqlite3_bind_text(statement, 2, directory.c_str(), -1, SQLITE_STATIC);
    }
    while (sqlite3_step(statement) == SQLITE_ROW) {
      const auto number = [&](int column) {
        return static_cast<unsigned>(sqlite3_column_int(statement, column));
      };
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 3));
      result.push_back({number(0), number(1), number(2), onOneLine(text)});
    }
    sqlite3_finalize(statement);
  }
}

std::string annotationLine(const Annotation& annotation) {
  const std::string carets(std::max(annotation.length, 1U), '^');
  const std::size_t before = annotation.column - 1;
  const std::string lead = before >= sizeof kLead
                               ? kLead + std::string(before - (sizeof kLead - 1), ' ')
                               : kLeadWithColumn + std::to_string(annotation.column) + ' ';
  return lead + carets + ' ' + annotation.text + '\n';
}

bool isAnnotation(const std::string& line) {
  if (line.starts_with(kLeadWithColumn)) return true;
  const std::size_t mark = line.find_first_not_of(' ', sizeof kLead - 1);
  return line.starts_with(kLead) && mark != std::string::npos && line[mark] == '^';
}

}  // namespace

std::vector<Annotation> readAnnotations(const std::string& preprocessingFile,
                                        const std::string& compilationFile,
                                        const std::string& sourceFile, const std::string& directory,
                                        const std::string& preprocessed) {
  std::vector<Annotation> result;
  readTables(preprocessingFile, kPreprocessingQueries, sourceFile, directory, preprocessed, result);
  readTables(compilationFile, kCompilationQueries, sourceFile, directory, preprocessed, result);
  return result;
}

std::string annotate(const std::string& source, std::vector<Annotation> annotations) {
  std::sort(annotations.begin(), annotations.end());
  std::istringstream lines(source);
  std::string result;
  auto next = annotations.begin();
  std::string line;
  for (unsigned number = 1; std::getline(lines, line); ++number) {
    result += line + '\n';
    for (; next != annotations.end() && next->line == number; ++next) {
      result += annotationLine(*next);
    }
  }
  for (; next != annotations.end(); ++next) result += "?? " + annotationLine(*next);
  return result;
}

std::string withoutAnnotations(const std::string& annotated) {
  std::istringstream lines(annotated);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    if (!isAnnotation(line)) result += line + '\n';
  }
  return result;
}

}  // namespace fe_db_tests
