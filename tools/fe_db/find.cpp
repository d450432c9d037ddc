#include <algorithm>

#include "answers.h"
#include "canonical_text.h"
#include "entity_views.h"
#include "fact_tree.h"
#include "nearest_word.h"
#include "number_words.h"
#include "output.h"
#include "questions.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

constexpr std::string_view kOptionsOfSome =
    "--name --min-length --ref-count --linkage --defined --sarif --role --depth";

constexpr std::string_view kNotForTrees = "--file --limit --count --explain";

bool has(std::string_view words, const std::string& word) {
  return word.find(' ') == std::string::npos &&
         (' ' + std::string(words) + ' ').find(' ' + word + ' ') != std::string::npos;
}

[[noreturn]] void refuse(const std::string& why) {
  throw WrongUsage("find: " + why + "; see fe_db find --help");
}

const Question& questionOf(const std::string& text) {
  const auto found = std::ranges::find(findQuestions(), text, &Question::text);
  if (found != findQuestions().end()) return *found;
  std::vector<std::string> known;
  for (const Question& question : findQuestions()) known.emplace_back(question.text);
  const std::string near = suggestion(text, known);
  throw WrongUsage("find: unknown question \"" + text + '"' + (near.empty() ? ";" : near) +
                   " \"fe_db find --help\" lists them");
}

void checkWords(const Question& question, const std::vector<std::string>& words) {
  const std::string name = std::string(question.text) + ": ";
  switch (question.argument) {
    case Argument::name:
      if (words.size() != 1) refuse(name + "takes exactly one NAME");
      break;
    case Argument::file:
      if (words.size() != 1) refuse(name + "takes exactly one FILE");
      break;
    case Argument::fileOrNone:
      if (words.size() > 1) refuse(name + "takes at most one FILE");
      break;
    case Argument::none:
      if (!words.empty())
        refuse(name + "takes no argument, but \"" + words.front() + "\" is given");
      break;
    case Argument::kinds:
      for (const std::string& word : words) {
        if (has(question.kinds, word)) continue;
        std::string kinds;
        for (const char c : question.kinds) kinds += c == ' ' ? ", " : std::string(1, c);
        refuse(name + "unknown kind \"" + word + "\" (" + kinds + ')');
      }
  }
}

/// The question, after checking that it takes all given arguments and options.
const Question& checkedQuestion(const FindOptions& options) {
  const Question& question = questionOf(options.question);
  const std::string name = options.question + ": ";
  for (const std::string& option : options.given) {
    if (options.depth && has(kNotForTrees, option)) {
      refuse(name + "--depth does not go with " + option);
    }
    if (!has(kOptionsOfSome, option) || has(question.options, option)) continue;
    std::string takers;
    for (const Question& other : findQuestions()) {
      if (!has(other.options, option)) continue;
      takers += (takers.empty() ? "" : ", ") + std::string(other.text);
    }
    refuse(name + "does not take " + option + ", which is for " + takers);
  }
  checkWords(question, options.filter.words);
  if (question.text == "long-names" && !options.filter.minLength) {
    refuse(name + "requires --min-length");
  }
  const auto& roles = vocabularyOf("Reference", "Roles");
  if (!options.filter.role.empty() && bitOf(roles, options.filter.role) == 0) {
    std::vector<std::string> known;
    for (const auto& [number, word] : roles.words) known.emplace_back(word);
    std::string list;
    for (const std::string& word : known) list += (list.empty() ? "" : ", ") + word;
    refuse(name + "unknown role \"" + options.filter.role + "\" (" + list + ')');
  }
  return question;
}

/// An answer from a file without the facts would look like "nothing found".
void requireFacts(const FactsFile& file, const Question& question, const FindFilter& filter) {
  const bool countsReferences = question.text == "functions" && filter.refCount;
  const std::string table(countsReferences ? "Reference" : question.table);
  if (table.empty() || file.hasRows(table)) return;
  throw std::runtime_error(
      file.getPath() + ": " + std::string(question.text) +
      (countsReferences ? " --ref-count" : "") + " needs the table " + table +
      (file.hasTable(table) ? ", which is empty here" : ", which the file lacks") +
      "; record the units again with fe_db_record and merge them into a new file");
}

/// References of some units only are facts, but not all of them.
void reportUnitsWithoutReferences(const FactsFile& file, const Question& question) {
  if (question.table != "Reference" || !file.hasTable("Unit")) return;
  constexpr char kCount[] = "SELECT count(*) FROM Unit";
  const long long all = file.numbers(kCount).front();
  const long long without =
      file.numbers(std::string(kCount) + " WHERE instr(Options, 'references=none')").front();
  if (without == 0) return;
  report(file.getPath() + ": " + std::to_string(without) + " of " + std::to_string(all) +
         " units were recorded without references: what is in them is missing here; record them "
         "again with --references=all");
}

/// Who asks about one thing has to know when the answers are about several.
void reportCandidates(const std::string& name, const std::vector<NamedEntity>& entities) {
  if (entities.size() < 2) return;
  constexpr std::size_t kMost = 8;
  std::string list;
  for (std::size_t i = 0; i < entities.size() && i < kMost; ++i) {
    const NamedEntity& entity = entities[i];
    const bool isOnlyOne = std::ranges::count(entities, entity.display, &NamedEntity::display) == 1;
    list += (i == 0 ? "" : ", ") + std::string(wordOf(entity.kind)) + ' ' +
            (isOnlyOne ? entity.display : entity.identifier);
  }
  if (entities.size() > kMost) list += ", ...";
  report("\"" + name + "\" is " + std::to_string(entities.size()) + " things, all of which are " +
         "answered for: " + list);
}

void requireExternal(const FactsFile& file, const std::string& name) {
  const std::string view = file.viewByName("fe_externals");
  if (!file.numbers("SELECT external_id FROM " + view + " WHERE name=?1", name).empty()) return;
  throw UnknownName(file.getPath() + ": no external is named \"" + name + '"' +
                    suggestion(name, file.texts("SELECT name FROM " + view)));
}

Request requestFor(const FactsFile& file, const Question& question, const FindFilter& filter) {
  Request request{file, filter, {}, {}, {}};
  const bool takesName = question.argument == Argument::name;
  const bool takesFile =
      question.argument == Argument::file || question.argument == Argument::fileOrNone;
  if (takesName) {
    request.entities = findEntities(file, filter.words.front(), question.names);
    reportCandidates(filter.words.front(), request.entities);
  } else if (filter.name && question.text != "externals") {
    request.entities = findEntities(file, *filter.name, question.names);
  } else if (filter.name) {
    requireExternal(file, *filter.name);
  }
  if (takesFile && !filter.words.empty()) request.files = findFiles(file, filter.words.front());
  if (filter.fileGlob) request.inFiles = findFiles(file, *filter.fileGlob);
  return request;
}

unsigned long printCount(const FactsFile& file, const std::string& sql) {
  const Statement counts = file.prepare("SELECT count(name), count(*) FROM (" + sql + ")");
  file.step(counts);
  const sqlite3_int64 found = sqlite3_column_int64(counts.get(), 0);
  print(std::to_string(found) + '\n');
  return static_cast<unsigned long>(sqlite3_column_int64(counts.get(), 1) - found);
}

void printPlan(const FactsFile& file, const std::string& sql) {
  const Statement plan = file.prepare("EXPLAIN QUERY PLAN " + sql);
  while (file.step(plan)) print(printable(textOf(plan, 3)) + '\n');
}

}  // namespace

int find(const FindOptions& options) {
  const Question& question = checkedQuestion(options);
  const FactsFile file(options.file, options.waitSeconds);
  requireFacts(file, question, options.filter);
  reportUnitsWithoutReferences(file, question);
  const Request request = requestFor(file, question, options.filter);
  if (options.depth) {
    printTree(request, question, *options.depth, options.json);
    return kDone;
  }
  const std::string select = question.select(request);
  if (select.empty()) {
    if (options.count) print("0\n");
    return kDone;
  }
  // With the limit in it, SQLite computes the attributes of those rows alone that it keeps.
  const std::string sql = select + " ORDER BY 1, 2, 3, 4, 5" +
                          (options.limit ? " LIMIT " + std::to_string(*options.limit) : "");
  unsigned long skipped = 0;
  if (options.explain) {
    printPlan(file, sql);
  } else if (options.count) {
    skipped = printCount(file, select);
  } else {
    AnswerPrinter printer(options.sarif  ? AnswerFormat::sarif
                          : options.json ? AnswerFormat::json
                                         : AnswerFormat::text,
                          question.text);
    printer.print(file, file.prepare(sql));
    skipped = printer.getSkipped();
  }
  if (skipped != 0) {
    report(options.file + ": damaged rows and references to them, skipped: " +
           std::to_string(skipped) + "; fe_db check lists them");
  }
  return kDone;
}

}  // namespace fe_db_tools
