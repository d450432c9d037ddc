#!/usr/bin/env bash
# Compiles and links a program that calls every public operation of the installed headers.
# usage: every_operation.sh CXX SOURCE INCLUDE_DIR LIB_DIR WORK_DIR
set -euo pipefail
compiler=$1 source=$2 include=$3 lib=$4 work=$5

mkdir -p "$work"
"$compiler" -std=c++20 -Wall -Wextra -Werror -Wno-unused-value "$source" -I "$include" \
  -o "$work/every_operation" -L "$lib" -Wl,-rpath,"$lib" -lfe_db -lshared_persistence
"$work/every_operation"
