#!/usr/bin/env bash
# Builds the example front end against an installed tree, runs it and compares what it prints.
# usage: embed.sh CMAKE GENERATOR CXX SOURCE_DIR PREFIX WORK_DIR
set -euo pipefail
cmake=$1 generator=$2 compiler=$3 source=$4 prefix=$5 work=$6

rm -rf "$work"
mkdir -p "$work"
"$cmake" -S "$source" -B "$work/build" -G "$generator" -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror"
"$cmake" --build "$work/build"
embed=$work/build/embed

expect_code() { # CODE COMMAND...
  local expected=$1 code=0
  shift
  "$@" >"$work/out" 2>"$work/err" || code=$?
  if [ "$code" != "$expected" ]; then
    echo "exit code $code, expected $expected: $*"
    cat "$work/out" "$work/err"
    exit 1
  fi
}

expect_quiet() { # COMMAND...: succeeds without a word on standard error
  expect_code 0 "$@"
  if [ -s "$work/err" ]; then
    echo "standard error is not empty: $*"
    cat "$work/err"
    exit 1
  fi
}

expect_code 2 "$embed"
expect_code 1 "$embed" record "$work/missing.comp.db" "$work/unused.pp.db"
expect_quiet "$prefix/bin/fe_db" init "$work/area.comp.db"
expect_quiet "$embed" record "$work/area.comp.db" "$work/area.pp.db"
expect_code 2 "$embed" record "$work/area.comp.db" "$work/area.pp.db"
expect_quiet "$embed" show "$work/area.comp.db" "$work/area.pp.db"
diff - "$work/out" <<'END'
macro SCALE = 3, used 1 time(s)
variable side of type length
area calls scaled at line 5
SCALE expands to 3
END
expect_quiet "$embed" find "$work/area.comp.db" scaled
diff - "$work/out" <<'END'
area.c:4: definition of scaled
END
