#!/usr/bin/env bash
# The C program builds without a warning, exports its compile commands and calculates.
# usage: c_example.sh CMAKE CC SOURCE_DIR WORK_DIR
set -euo pipefail
cmake=$1 compiler=$2 source=$3 work=$4

rm -rf "$work"
"$cmake" -S "$source" -B "$work" -DCMAKE_C_COMPILER="$compiler" -DCMAKE_C_FLAGS=-Werror
"$cmake" --build "$work"
[ "$(grep -c '"file"' "$work/compile_commands.json")" = 5 ]
"$work/abacus" | diff "$source/expected_output.txt" -
