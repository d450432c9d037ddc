#include <algorithm>
#include <limits>
#include <memory>

#include "fe_db/compilation_database.h"
#include "find_questions.h"
#include "merge_input.h"
#include "output.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

struct FindOptions {
  std::string file;
  std::string question;
  FindFilter filter;
  std::optional<std::size_t> limit;
  bool count = false;
  bool json = false;
  bool sarif = false;
  int waitSeconds = kDefaultWaitSeconds;
};

bool has(std::string_view words, const std::string& word) {
  return word.find(' ') == std::string::npos &&
         (' ' + std::string(words) + ' ').find(' ' + word + ' ') != std::string::npos;
}

std::string unknownWord(const Question& question, const std::string& word) {
  if (question.words.empty()) return "takes no argument, but \"" + word + "\" is given";
  std::string kinds;
  for (const char c : question.words) kinds += c == ' ' ? ", " : std::string(1, c);
  return "unknown kind \"" + word + "\" (" + kinds + ')';
}

/// The question, once it is sure that everything given belongs to it.
const Question& checkedQuestion(const CLI::App& command, FindOptions& options) {
  const auto refuse = [&](const std::string& why) {
    throw CLI::ValidationError("find", options.question + ": " + why);
  };
  const auto question = std::find_if(findQuestions().begin(), findQuestions().end(),
                                     [&](const Question& q) { return q.text == options.question; });
  if (question == findQuestions().end()) {
    throw CLI::ValidationError(
        "find", "unknown question \"" + options.question + "\"; \"fe_db find --help\" lists them");
  }
  for (const char* option :
       {"--name", "--min-length", "--ref-count", "--linkage", "--defined", "--sarif"}) {
    if (command.count(option) != 0 && !has(question->options, option)) {
      refuse(std::string("does not take ") + option);
    }
  }
  FindFilter& filter = options.filter;
  if (question->words == "NAME") {
    if (filter.words.size() != 1) refuse("takes exactly one NAME");
    filter.name = filter.words.front();
  } else {
    for (const std::string& word : filter.words) {
      if (!has(question->words, word)) refuse(unknownWord(*question, word));
    }
  }
  if (question->text == "long-names" && !filter.minLength) refuse("requires --min-length");
  return *question;
}

int find(const FindOptions& options, const Question& question) {
  checkMergeInput(options.file, options.waitSeconds);
  const ReadOnlyFile file(options.file, options.waitSeconds);
  dm::CompilationData data(options.file, "");
  dm::CompilationDatabase& db = data.getCompDb();
  db.setBusyTimeout(busyTimeoutOf(options.waitSeconds));
  if (!db.quick_connect(/*readOnly=*/true)) {
    throw std::runtime_error(options.file + ": cannot be opened");
  }
  Search search{options.filter, data, file};
  question.ask(search);
  if (db.hasFailed()) {
    throw std::runtime_error(options.file + ": cannot be read to its end: " + failureOf(db) +
                             "; create the file again or restore a copy");
  }
  if (const unsigned long count = db.getLeftOutReferences() + search.passedOver; count != 0) {
    report(options.file + ": damaged rows and references to them, skipped: " +
           std::to_string(count) + "; fe_db check lists them");
  }
  std::vector<Finding>& findings = search.findings;
  std::stable_sort(findings.begin(), findings.end(), isBefore);
  if (options.limit) findings.resize(std::min(findings.size(), *options.limit));
  if (options.count) {
    print(std::to_string(findings.size()) + '\n');
  } else if (options.sarif) {
    printSarif(findings, question.text);
  } else {
    options.json ? printJson(findings) : printText(findings);
  }
  return kDone;
}

constexpr char kHelp[] = R"(QUESTION is a kind of entity:
  functions variables types macros fields enum-constants labels calls externals
or one of
  unused [macros] [types] [tags] [variables] [fields]   unused entities; without a kind, of all five
  no-effect-calls      calls that discard the result of a function without side effects
  long-names           entities of all kinds whose names have --min-length N characters or more
  definition NAME      where a function, variable, type or macro is defined
  declarations NAME    where else it is declared
  callers NAME         the calls to a function
  callees NAME         the calls in a function
NAME is an identifier or, for functions, the name in the source; for calls, --name matches caller
or callee. The length is that of the identifier, which for a C++ function is the mangled name.
--min-length and --ref-count exclude unnamed types. "unused" finds: macros defined in a file; types
without a tag (typedefs); tags, that is struct, union, enum and class types, that are named neither
with nor without that keyword; variables of which no declaration is used, in any file if external,
in the same file if internal; fields. fe_db merge does not store reference counts of functions.
Prints path:line:column: kind name [attributes], with - for no file and \xNN for bytes that are not
text. Prints nothing if nothing is found; that is not a failure. Files without the indexes of
fe_db index take longer.)";

}  // namespace

void addFind(CLI::App& program, Action& action) {
  auto options = std::make_shared<FindOptions>();
  FindFilter& filter = options->filter;
  CLI::App* command = program.add_subcommand("find", "Answer a question about the code");
  command->footer(kHelp);
  command->add_option("FILE", options->file, "A compilation database")->required();
  command->add_option("QUESTION", options->question, "What to find; see below")->required();
  command->add_option("WORD", filter.words, "The argument of the question");
  command->add_option("--name", filter.name, "Only entities of this name");
  command->add_option("--min-length", filter.minLength,
                      "Only names of at least this many characters");
  command
      ->add_option("--ref-count", filter.refCount,
                   "Only entities with exactly this many references")
      ->check(CLI::Range(0, std::numeric_limits<int>::max()));
  command
      ->add_option("--linkage", filter.linkage,
                   "Only this linkage: none, external, internal or a number")
      ->transform(CLI::Transformer(
          std::map<std::string, std::uint32_t>{{"none", 0}, {"external", 1}, {"internal", 2}}));
  command->add_flag("--defined", filter.defined, "Only definitions; for types, complete ones");
  command->add_option("--file", filter.fileGlob,
                      "Only in files whose path matches; * also matches /");
  command->add_option("--limit", options->limit, "Print at most this many")
      ->check(CLI::Range(1, std::numeric_limits<int>::max()));
  auto* count = command->add_flag("--count", options->count, "Print only the number");
  auto* json = command->add_flag("--json", options->json, "One JSON object per line");
  auto* sarif = command->add_flag("--sarif", options->sarif,
                                  "SARIF 2.1.0, for unused, no-effect-calls and long-names");
  count->excludes(json, sarif);
  json->excludes(sarif);
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, command, &action] {
    const Question& question = checkedQuestion(*command, *options);
    action = namingFiles(options->file, [options, &question] { return find(*options, question); });
  });
}

}  // namespace fe_db_tools
