# Sourced by scripts that work on real projects.
# shellcheck shell=bash

# Unpacks a Debian source package's own tarball, without Debian's changes, into PLACE/source/. Uses a
# package list of its own: the machine's stays as it is.
fetch_debian_source() { # PACKAGE PLACE
  local package=$1 place=$2
  [ -d "$place/source" ] && return
  local apt=$place/apt
  mkdir -p "$apt/lists/partial" "$apt/archives/partial"
  echo "deb-src http://deb.debian.org/debian bookworm main" >"$apt/sources.list"
  local options=(-q -o "Dir::Etc::sourcelist=$apt/sources.list" -o Dir::Etc::sourceparts=-
    -o "Dir::State::lists=$apt/lists" -o "Dir::Cache=$apt"
    -o Dir::Etc::trustedparts=/etc/apt/trusted.gpg.d)
  (cd "$apt" && apt-get "${options[@]}" update && apt-get "${options[@]}" source --download-only "$package")
  rm -rf "$place/source.new" && mkdir "$place/source.new"
  tar -xf "$(find "$apt" -name '*.orig.tar.*' ! -name '*.asc' | head -1)" -C "$place/source.new" \
    --strip-components=1
  mv "$place/source.new" "$place/source"
}
