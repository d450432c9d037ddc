#include <algorithm>

#include "fe_db/compilation_database.h"
#include "find_questions.h"
#include "merge_input.h"
#include "output.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

constexpr std::string_view kOptionsOfSome =
    "--name --min-length --ref-count --linkage --defined --sarif";

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

[[noreturn]] void refuse(const std::string& why) {
  throw WrongUsage("find: " + why + "; see fe_db find --help");
}

/// The question, after checking that it takes all given arguments and options.
const Question& checkedQuestion(const FindOptions& options) {
  const auto question = std::find_if(findQuestions().begin(), findQuestions().end(),
                                     [&](const Question& q) { return q.text == options.question; });
  if (question == findQuestions().end()) {
    throw WrongUsage("find: unknown question \"" + options.question +
                     "\"; \"fe_db find --help\" lists them");
  }
  const std::string name = options.question + ": ";
  for (const std::string& option : options.given) {
    if (has(kOptionsOfSome, option) && !has(question->options, option)) {
      refuse(name + "does not take " + option);
    }
  }
  const FindFilter& filter = options.filter;
  if (question->words == "NAME") {
    if (filter.words.size() != 1) refuse(name + "takes exactly one NAME");
  } else {
    for (const std::string& word : filter.words) {
      if (!has(question->words, word)) refuse(name + unknownWord(*question, word));
    }
  }
  if (question->text == "long-names" && !filter.minLength) refuse(name + "requires --min-length");
  return *question;
}

}  // namespace

int find(const FindOptions& options) {
  const Question& question = checkedQuestion(options);
  FindFilter filter = options.filter;
  if (question.words == "NAME") filter.name = filter.words.front();
  checkMergeInput(options.file, options.waitSeconds);
  const ReadOnlyFile file(options.file, options.waitSeconds);
  dm::CompilationData data(options.file, "");
  dm::CompilationDatabase& db = data.getCompDb();
  db.setBusyTimeout(busyTimeoutOf(options.waitSeconds));
  if (!db.quick_connect(/*readOnly=*/true)) {
    throw std::runtime_error(options.file + ": cannot be opened");
  }
  Search search{filter, data, file};
  question.ask(search);
  if (db.hasFailed()) {
    throw std::runtime_error(options.file + ": cannot be read to its end: " + failureOf(db) +
                             "; create the file again or restore a copy");
  }
  if (const unsigned long count = db.getLeftOutReferences() + search.skipped; count != 0) {
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

}  // namespace fe_db_tools
