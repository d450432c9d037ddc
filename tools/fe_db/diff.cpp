#include <memory>

#include "canonical_rows.h"
#include "output.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

struct DiffOptions {
  std::string left;
  std::string right;
  std::string table;
  int waitSeconds = kDefaultWaitSeconds;
};

void printDifference(char side, std::string_view line) {
  print({&side, 1});
  print(line);
  print("\n");
}

/// Walks two sorted streams. A row that stands three times on one side and once on the other is
/// two differences.
bool tablesDiffer(const ReadOnlyFile& leftFile, const ReadOnlyFile& rightFile, const Table& table) {
  CanonicalRows left(leftFile, table);
  CanonicalRows right(rightFile, table);
  bool differ = false;
  bool hasLeft = left.next();
  bool hasRight = right.next();
  while (hasLeft || hasRight) {
    const int order = !hasLeft ? 1 : !hasRight ? -1 : left.line().compare(right.line());
    if (order < 0) printDifference('-', left.line());
    if (order > 0) printDifference('+', right.line());
    differ = differ || order != 0;
    if (order <= 0) hasLeft = left.next();
    if (order >= 0) hasRight = right.next();
  }
  return differ;
}

int diff(const DiffOptions& options) {
  const ReadOnlyFile left(options.left, options.waitSeconds);
  const ReadOnlyFile right(options.right, options.waitSeconds);
  bool differ = false;
  for (const Table& table : kTables) {
    if (options.table == table.name) {
      left.require(table);
      right.require(table);
    }
    if (options.table.empty() || options.table == table.name) {
      differ = tablesDiffer(left, right, table) || differ;
    }
  }
  return differ ? kFailed : kDone;
}

}  // namespace

void addDiff(CLI::App& program, Action& action) {
  auto options = std::make_shared<DiffOptions>();
  CLI::App* command =
      program.add_subcommand("diff", "Compare the content of two files, ignoring row ids");
  command->footer(
      "Prints the rows that only A has with '-' and those that only B has with '+', in the format\n"
      "of `fe_db dump`. Exits with 1 if there are any. `--table Unit` compares the units of two\n"
      "merged files: those that only one has, and those that were recorded anew.");
  command->add_option("A", options->left, "The first database file")->required();
  command->add_option("B", options->right, "The second database file")->required();
  addTableOption(*command, options->table);
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action =
        namingFiles(options->left + " and " + options->right, [options] { return diff(*options); });
  });
}

}  // namespace fe_db_tools
