#!/usr/bin/env bash
# Lays C++ sources out as .clang-format says: the files named, or all .cpp. Headers are laid out by hand in the same style,
# since their comments stand in columns. With --check nothing is changed; it fails when a file is laid out otherwise.
set -eu

here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
root=$(dirname "$here")
"$here/install-packages.sh" format

options=(-i)
if [ "${1:-}" = --check ]; then
  options=(--dry-run -Werror)
  shift
fi

if [ $# -gt 0 ]; then
  clang-format "${options[@]}" -- "$@"
else
  cd "$root"
  find . -path './.?*' -prune -o -path ./build -prune -o -path ./dist -prune -o \
    -type f -name '*.cpp' -print0 | xargs -0 clang-format "${options[@]}"
fi
