#!/usr/bin/env bash
# Each installed header compiles as the first line of a file, with nothing but the installed tree
# and Boost on the include path. usage: headers_compile_alone.sh CXX INCLUDE_DIR
set -euo pipefail
compiler=$1
include=$2

headers=$(cd "$include" && find . -name '*.h' -printf '%P\n' | sort)
[ -n "$headers" ] || { echo "no headers in $include"; exit 1; }
failed=0
for header in $headers; do
  echo "#include <$header>" |
    "$compiler" -std=c++20 -Wall -Wextra -Werror -fsyntax-only -I "$include" -x c++ - ||
    { echo "does not compile alone: $header"; failed=1; }
done
exit $failed
