#pragma once

#include <string>

namespace fe_db_tests {

/// Rows in all fifteen tables, with references of every kind. Each id `{n}` becomes
/// n * factor + shift: the same content under other ids, and in another order.
inline std::string wholeContent(long factor, long shift) {
  constexpr std::string_view kRows = R"sql(
INSERT INTO File VALUES ({1}, 'a.c', 1, 2, 0), ({2}, 'c:/b.h', 3, 2, 1);
INSERT INTO Identifier (IdentifierId, Name, Kind, Count)
  VALUES ({1}, 'main', 2, 7), ({2}, 'ns::f', 3, 1), ({3}, 'MAX', 8, 2);
INSERT INTO Macro VALUES ({1}, {3}, {2}, 4, 9, 2, -1, 0, 0, 1, 0, 0, '(a)'),
                         ({2}, {3}, NULL, 0, 3, 0, NULL, 0, 1, 0, 0, 1, '');
INSERT INTO MacroInvocation VALUES ({1}, {1}, {1}, 5, 6, NULL, 50, 1, 8);
INSERT INTO MacroInvocationCodeOrigin VALUES
  ({2}, 4, 11, {1}, 0, 1, 1, 'a'), (NULL, 0, 1, {1}, 2, 3, 0, 'b');
INSERT INTO MacroExpansion VALUES ('MAX(a)', '(a)', {1}, 5, 6, 50, 1);
INSERT INTO Type VALUES ({1}, {2}, 0, 0, 1, {2}, 1, 8, 4, 2, 1), ({2}, {2}, 0, 0, 1, {2}, 1, 8, 512, 2, 1);
INSERT INTO TypeReference VALUES ({2}, {1}), ({2}, NULL);
INSERT INTO Variable VALUES ({5}, {1}, {1}, 2, 3, {1}, 1, 1, 9);
INSERT INTO Function VALUES ({5}, {2}, {1}, {1}, 3, 5, 1, 0, 2, 1, 4);
INSERT INTO ExternalIdentifier VALUES
  ({1}, {1}, 0, {5}), ({2}, {2}, 1, {5}), ({3}, {2}, -1, 0);
INSERT INTO Field VALUES ({1}, {1}, {2}, 7, 8, 0);
INSERT INTO EnumConstant VALUES ({1}, {1}, {2}, 7, 9);
INSERT INTO Label VALUES ({1}, {1}, {1}, 10, 1);
INSERT INTO CallPoint VALUES ({1}, {1}, 11, 12, 0, {5}, {5});
)sql";
  std::string sql;
  for (std::size_t at = 0; at < kRows.size(); ++at) {
    if (kRows[at] == '{') {
      sql += std::to_string((kRows[at + 1] - '0') * factor + shift);
      at += 2;
    } else {
      sql += kRows[at];
    }
  }
  return sql;
}

}  // namespace fe_db_tests
