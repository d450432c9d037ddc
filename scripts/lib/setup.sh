# Sourced by scripts/demo and scripts/test: packages, configuring, building.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
program=$(basename "$0")
cd "$root" || exit 1

# What every build needs, and what fe_db_record needs in addition. "a|b" is satisfied by either; the
# first is what gets installed.
build_packages=(g++ cmake make ninja-build libsqlite3-dev "libboost-dev|libboost1.81-dev" libcli11-dev
                nlohmann-json3-dev libgtest-dev libgmock-dev)
# What the benchmarks and the instruction counts at the end of the tests need in addition.
bench_packages=(libbenchmark-dev valgrind python3)
fault_packages=(python3)  # the fault kit, which the tests run in part
style_packages=(clang-format-14 clang-tidy-14)
record_packages=(libclang-19-dev llvm-19-dev)
record_fallback=(libclang-14-dev)

say() { printf '\n== %s\n' "$*"; }
complain() { printf '%s: %s\n' "$program" "$*" >&2; }

is_installed() {
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# Prints those of the given packages that are not installed.
missing_of() {
  local wanted one
  for wanted in "$@"; do
    for one in ${wanted//|/ }; do
      if is_installed "$one"; then continue 2; fi
    done
    echo "${wanted%%|*}"
  done
}

# How to become root: prints no prefix or "sudo", or fails. sudo may ask only if somebody can
# answer.
root_prefix() {
  if [ "$(id -u)" = 0 ]; then return 0; fi
  command -v sudo >/dev/null || return 1
  if sudo -n true 2>/dev/null || { [ -t 0 ] && [ -t 2 ]; }; then
    echo sudo
  else
    return 1
  fi
}

apt() { # PREFIX ARGUMENT...
  local prefix=$1
  shift
  # shellcheck disable=SC2086  # the prefix is empty or one word
  $prefix env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300 "$@" </dev/null
}

install_line() { echo "apt-get update && apt-get install -y --no-install-recommends $*"; }

# Sets record_missing: the packages of fe_db_record that are not installed; empty if an older
# supported Clang is.
find_record_missing() {
  record_missing=()
  if [ "${FE_DB_RECORD:-}" = OFF ]; then return; fi
  local fallback_missing
  mapfile -t record_missing < <(missing_of "${record_packages[@]}")
  mapfile -t fallback_missing < <(missing_of "${record_fallback[@]}")
  if [ ${#fallback_missing[@]} = 0 ]; then record_missing=(); fi
}

# Without Clang everything but the recorder can still be built.
install_record_packages() { # PREFIX
  local choice
  for choice in "${record_packages[*]}" "${record_fallback[*]}"; do
    # shellcheck disable=SC2086  # a list of names
    if apt "$1" install -y --no-install-recommends $choice; then return; fi
    complain "could not install $choice"
  done
  complain "continuing without fe_db_record: Clang's development packages are not available"
}

# Makes sure that the packages given, and those of fe_db_record, are installed; installs only what
# is missing. Without the right to install, prints what to install and ends the script.
need_packages() {
  if ! command -v dpkg-query >/dev/null; then
    complain "dpkg is not installed: packages are not checked; required are: $*"
    return
  fi
  local missing prefix
  mapfile -t missing < <(missing_of "$@")
  find_record_missing
  if [ $((${#missing[@]} + ${#record_missing[@]})) = 0 ]; then return; fi
  if ! prefix=$(root_prefix); then
    complain "some packages are missing, and installing them requires root. Run as root:"
    echo "  $(install_line "${missing[@]}" "${record_missing[@]}")" >&2
    if [ ${#missing[@]} = 0 ]; then
      complain "or continue without fe_db_record: FE_DB_RECORD=OFF scripts/$program"
    fi
    exit 1
  fi
  say "Installing ${missing[*]} ${record_missing[*]}"
  apt "$prefix" update || complain "apt-get update failed; trying with the existing lists"
  if [ ${#missing[@]} -gt 0 ] && ! apt "$prefix" install -y --no-install-recommends "${missing[@]}"; then
    complain "these packages could not be installed: ${missing[*]}"
    exit 1
  fi
  if [ ${#record_missing[@]} -gt 0 ]; then install_record_packages "$prefix"; fi
}

memory_mb() { # available in this machine or container
  local available limit
  available=$(awk '/^MemAvailable:/ { print int($2 / 1024) }' /proc/meminfo)
  limit=$(cat /sys/fs/cgroup/memory.max 2>/dev/null || echo max)
  if [ "$limit" != max ] && [ $((limit / 1048576)) -lt "$available" ]; then
    available=$((limit / 1048576))
  fi
  echo "$available"
}

# As many compilers as there are processors, but no more than fit into memory: a source of
# fe_db_record takes 1.4 GB.
count_jobs() {
  local jobs room
  jobs=${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}
  room=$(($(memory_mb) / 1500))
  if [ "$jobs" -gt "$room" ]; then jobs=$room; fi
  if [ "$jobs" -lt 1 ]; then jobs=1; fi
  echo "$jobs"
}

# Configures a preset; further arguments go to cmake.
configure() { # PRESET ARGUMENT...
  local preset=$1
  shift
  say "Configuring: $preset"
  cmake --preset "$preset" "$@"
}

build() { # PRESET ARGUMENT...
  local preset=$1
  shift
  say "Building: $preset, $jobs at a time"
  cmake --build --preset "$preset" --parallel "$jobs" "$@"
}

jobs=$(count_jobs)
