# Sourced by scripts/test: rules that hold over the sources and that no compiler checks.
# shellcheck shell=bash

own_sources() {
  find include src tools tests benchmarks examples \
    \( -name '*.h' -o -name '*.cpp' -o -name '*.c' \) -print0 | sort -z
}

check_format() {
  say "Format"
  own_sources | xargs -0 clang-format-14 --dry-run -Werror --ferror-limit=3
  echo "as .clang-format says"
}

# Fails, naming the lines, when the pattern occurs in the files given.
refuse() { # WHY PATTERN FILE...
  local why=$1 pattern=$2
  shift 2
  if grep -nE "$pattern" "$@"; then
    complain "$why"
    return 1
  fi
}

check_source_rules() {
  say "Source rules"
  local library quiet headers
  mapfile -t library < <(find src -name '*.cpp' -o -name '*.h' | sort)
  mapfile -t quiet < <(printf '%s\n' "${library[@]}" |
    grep -vxE 'src/persistence/(sqlite_report|debug)\.cpp')
  refuse "the library writes to standard error through sqlite_report.h and the trace only" \
    'stderr|std::(cerr|clog)|perror *\(|STDERR_FILENO' "${quiet[@]}"
  mapfile -t quiet < <(printf '%s\n' "${library[@]}" | grep -v '/merger/')
  refuse "in the library only the merger's table sizes go to standard output" \
    'std::cout|\bstdout\b|\b(printf|puts|putchar) *\(' "${quiet[@]}"
  mapfile -t headers < <(find include -name '*.h' | sort)
  refuse "callers do not need SQLite's headers" '#include *[<"]sqlite3\.h' "${headers[@]}"
  echo "one reporting file, no sqlite3.h in include/"
}

# Sources that name many arguments in comments. The preset "tidy" looks at all sources, which
# takes too long for every run.
tidy_sources=(
  tools/fe_db/check_rules.cpp
  benchmarks/generator/generated_program.cpp
  benchmarks/operations/dataset.cpp
  tests/fe_database/save_load/save_comp_test.cpp
  tests/fe_database/dataset/model.cpp
)

# A comment that names an argument has to name the parameter; needs the configured release build.
check_named_arguments() {
  say "clang-tidy"
  printf '%s\n' "${tidy_sources[@]}" | xargs -P "$jobs" -n 1 clang-tidy-14 --quiet -p build/release
}
