
#include "canonical_rows.h"
#include "output.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

void printDifference(char side, std::string_view line) {
  print({&side, 1});
  print(line);
  print("\n");
}

/// Walks two sorted streams. A row that occurs three times on one side and once on the other is
/// two differences.
bool tablesDiffer(const ReadOnlyFile& leftFile, const ReadOnlyFile& rightFile, const Table& table) {
  CanonicalRows left(leftFile, table);
  CanonicalRows right(rightFile, table);
  bool differ = false;
  bool hasLeft = left.next();
  bool hasRight = right.next();
  while (hasLeft || hasRight) {
    const int order = !hasLeft ? 1 : !hasRight ? -1 : left.getLine().compare(right.getLine());
    if (order < 0) printDifference('-', left.getLine());
    if (order > 0) printDifference('+', right.getLine());
    differ = differ || order != 0;
    if (order <= 0) hasLeft = left.next();
    if (order >= 0) hasRight = right.next();
  }
  return differ;
}

}  // namespace

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

}  // namespace fe_db_tools
