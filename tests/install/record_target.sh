#!/usr/bin/env bash
# A project that records its targets with the installed package: the facts are there after a build,
# a second build does nothing, and a source that changed brings its facts.
# usage: record_target.sh CMAKE GENERATOR CC PREFIX WORK_DIR
set -euo pipefail
cmake=$1 generator=$2 compiler=$3 prefix=$4 work=$5

rm -rf "$work"
mkdir -p "$work"
cat >"$work/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(tiny LANGUAGES C)
find_package(fe_db REQUIRED)
add_library(part STATIC part.c)
add_executable(app main.c)
target_link_libraries(app PRIVATE part)
fe_db_record_target(app OPTIONS --keep-preprocessed)
fe_db_record_target(part OUTPUT facts/part.db)
END
echo 'int part(void) { return 1; }' >"$work/part.c"
echo 'int part(void); int main(void) { return part() - 1; }' >"$work/main.c"
"$cmake" -S "$work" -B "$work/build" -G "$generator" -DCMAKE_C_COMPILER="$compiler" \
  -DCMAKE_PREFIX_PATH="$prefix"

build_and_expect() { # FUNCTIONS_OF_APP FUNCTIONS_OF_PART TARGETS_MERGED
  "$cmake" --build "$work/build" >"$work/out" 2>"$work/err"
  cat "$work/out" "$work/err"
  [ ! -s "$work/err" ] && [ "$(functions app.facts.db)" = "$1" ] &&
    [ "$(functions facts/part.db)" = "$2" ] &&
    [ "$(sed -n 's/.*Merging the facts of //p' "$work/out" | sort | xargs)" = "$3" ]
}

functions() { # FILE
  "$prefix/bin/fe_db" dump "$work/build/$1" --table Function |
    grep -o 'SourceNameId=[a-z]*' | cut -d = -f 2 | sort | xargs
}

build_and_expect "main part" "part" "app part"
[ -e "$work"/build/CMakeFiles/app.dir/main.c.o.i ]
build_and_expect "main part" "part" ""
sleep 1 # make compares whole seconds on some file systems
echo 'int renamed(void) { return 1; } int part(void) { return renamed(); }' >"$work/part.c"
build_and_expect "main part" "part renamed" "part"
