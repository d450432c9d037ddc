#!/usr/bin/env bash
# Compares what a shared library exports with a list, or writes the list.
# usage: exported_symbols.sh compare|update NM LIBRARY LIST
#
# Left out are weak symbols of std, boost and the compiler's run time (__gnu_cxx): templates that
# became part of the library, with names and number at the mercy of compiler and optimisation.
set -euo pipefail
mode=$1 nm=$2 library=$3 list=$4

exported() {
  "$nm" -D --defined-only --demangle "$library" |
    sed -E 's/^[0-9a-f]+ //' |
    grep -vE '^[VWu] ([^(]* )?(std|boost|__gnu_cxx)::' |
    sed -E 's/^[A-Za-z] //
            s/std::(__cxx11::)?basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g
            s/std::basic_string_view<char, std::char_traits<char> >/std::string_view/g' |
    LC_ALL=C sort -u
}

case $mode in
  update) exported >"$list" ;;
  compare)
    exported | diff -u --label "expected: $(basename "$list")" --label "exported" "$list" - || {
      echo "When this is meant, run the target update-exported-symbols and commit the list."
      exit 1
    }
    ;;
  *)
    echo "usage: exported_symbols.sh compare|update NM LIBRARY LIST" >&2
    exit 2
    ;;
esac
