# Sourced by scripts/demo: prints the content of the recorded files.
# shellcheck shell=bash

# Rows per table, added up over the files of a directory: one column for each kind of database.
table_sizes() { # DIRECTORY
  local kind file
  for kind in pp comp; do
    for file in "$1"/*."$kind".db; do
      build/release/bin/fe_db stats "$file" | sed "s/^/$kind /"
    done
  done | awk '
    NF == 3 && $2 != "rows" { if (!($2 in seen)) { seen[$2] = 1; order[++tables] = $2 } }
    NF == 3 { sum[$1, $2] += $3 }
    /file size in bytes/ { bytes[$1] += $NF }
    function line(name, pp, comp) { printf "  %-26s %16s %16s\n", name, pp, comp }
    END {
      line("table", "preprocessing", "compilation")
      for (i = 1; i <= tables; ++i)
        line(order[i], ("pp", order[i]) in sum ? sum["pp", order[i]] : "-", sum["comp", order[i]])
      line("rows", sum["pp", "rows"], sum["comp", "rows"])
      line("bytes", bytes["pp"], bytes["comp"])
    }'
}

# Rows per table: in the units' compilation databases together, and in the one that they were
# merged into.
merge_sizes() { # DIRECTORY MERGED
  local file
  {
    for file in "$1"/*.comp.db; do build/release/bin/fe_db stats "$file"; done | sed 's/^/before /'
    build/release/bin/fe_db stats "$2" | sed 's/^/after /'
  } | awk '
    NF == 3 { sum[$1, $2] += $3; if (!($2 in seen)) { seen[$2] = 1; order[++tables] = $2 } }
    END {
      printf "  %-26s %16s %16s\n", "table", "in the units", "merged"
      for (i = 1; i <= tables; ++i)
        if (sum["before", order[i]] > 0)
          printf "  %-26s %16d %16d\n", order[i], sum["before", order[i]], sum["after", order[i]]
    }'
}

# SQL that brings the macros, expansions and dropped calls of all files of a directory together, as
# each unit has files of its own.
gather_sql() { # DIRECTORY
  local file
  echo "CREATE TABLE Used (Macro, File, Line, Text, Uses);"
  echo "CREATE TABLE Expanded (Call, Code, File, Line);"
  echo "CREATE TABLE Dropped (Caller, Callee, File, Line);"
  echo "CREATE TABLE Declared (Unit, Path, Declarations);"
  for file in "$1"/*.pp.db; do
    echo "ATTACH '$file' AS unit;"
    echo "INSERT INTO Used SELECT Macro, File, DeclLineNum, Text, RefCount FROM unit.MacroView;"
    echo "INSERT INTO Expanded SELECT MacroCall, ExpandedCode, File.Path, LineNum
            FROM unit.MacroExpansion JOIN unit.File USING (FileId);"
    echo "DETACH unit;"
  done
  for file in "$1"/*.comp.db; do
    echo "ATTACH '$file' AS unit;"
    echo "INSERT INTO Dropped SELECT CallerName.Name, CalleeName.Name, File.Path, LineNum
            FROM unit.CallPoint
            JOIN unit.Function Caller ON Caller.FunctionId = CallerId
            JOIN unit.Identifier CallerName ON CallerName.IdentifierId = Caller.SourceNameId
            JOIN unit.Function Callee ON Callee.FunctionId = CalleeId
            JOIN unit.Identifier CalleeName ON CalleeName.IdentifierId = Callee.SourceNameId
            JOIN unit.File USING (FileId) WHERE IsValueUsed = 0;"
    echo "INSERT INTO Declared SELECT '$file', * FROM ($(declared_sql unit));"
    echo "DETACH unit;"
  done
}

# Asks over all files of a directory; DIR in the SQL stands for the analysed sources' own directory.
ask() { # DIRECTORY SOURCES SQL
  { gather_sql "$1"; echo "${3//DIR/$2}"; } | sqlite3 -batch :memory: | sed "s|$root/||; s/^/  /"
}

# SQL for the number of declarations in each file, of the database attached under a name.
declared_sql() { # SCHEMA
  local table union=""
  for table in Function Variable Type Field EnumConstant Macro; do
    union+="${union:+ UNION ALL }SELECT DeclFileId FROM $1.$table"
  done
  echo "SELECT Path, count(*) FROM ($union) JOIN $1.File ON FileId = DeclFileId GROUP BY Path"
}

# The header of these sources with the most declarations, over all units and merged into one file.
collapsed_header() { # DIRECTORY SOURCES MERGED
  {
    gather_sql "$1"
    echo "ATTACH '$3' AS merged;"
    echo "SELECT printf('%s: %d declarations in %d units, %d merged', Path, sum(D.Declarations),
                 count(*), (SELECT M.\"count(*)\" FROM ($(declared_sql merged)) M
                            WHERE M.Path = D.Path))
          FROM Declared D WHERE Path LIKE '$2/%.h'
          GROUP BY Path ORDER BY sum(D.Declarations) DESC LIMIT 1;"
  } | sqlite3 -batch :memory: | sed "s|$root/||; s/^/  /"
}
