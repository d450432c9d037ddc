#!/usr/bin/env bash
# The C program builds without a warning, exports its compile commands and calculates.
# usage: c_example.sh CMAKE GENERATOR CC SOURCE_DIR WORK_DIR
set -euo pipefail
cmake=$1 generator=$2 compiler=$3 source=$4 work=$5

rm -rf "$work"
"$cmake" -S "$source" -B "$work" -G "$generator" -DCMAKE_C_COMPILER="$compiler" \
  -DCMAKE_C_FLAGS=-Werror
"$cmake" --build "$work"
[ "$(grep -c '"file"' "$work/compile_commands.json")" = 5 ]
"$work/abacus" | diff "$source/expected_output.txt" -
