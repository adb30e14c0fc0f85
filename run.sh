#!/usr/bin/env bash
# Builds the program and opens its window: ./run.sh. Or runs it with the words given, such as the names of two files, and
# shows what the run wrote into the audit file. Ends with the program's exit status. Installs what the build needs first.
set -eu

root=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
"$root/scripts/install-packages.sh" build

# --- build, silently unless it fails ---

build=$root/build/run
mkdir -p "$build"
[ -e "$build/tagwright" ] || echo "run.sh: building the program, which takes a minute or two" >&2
if ! (cd "$root" && cmake --preset native -B "$build" -DTAGWRIGHT_TESTS=OFF && cmake --build "$build") \
  >"$build/build.log" 2>&1; then
  cat "$build/build.log" >&2
  echo "run.sh: the build failed" >&2
  exit 1
fi

# --- run ---

audit_file () { echo "/tmp/tagwright-$(id -u)/Tagwright_$(LC_ALL=C date +%d%b%Y).dat"; }
size_of () { if [ -f "$1" ]; then wc -c <"$1"; else echo 0; fi; }

# Shows what was added to the file after its first bytes; all of it when it has become shorter.
show_audit () { # file, size before
  local size
  size=$(size_of "$1")
  [ "$size" -ne "$2" ] || return 0
  echo "--- $1 ---"
  if [ "$size" -gt "$2" ]; then tail -c "+$(($2 + 1))" "$1"; else cat "$1"; fi
}

before=$(audit_file)
before_size=$(size_of "$before")
status=0
"$build/tagwright" "$@" || status=$?
[ $# -gt 0 ] || exit "$status"

show_audit "$before" "$before_size"
after=$(audit_file)
[ "$after" = "$before" ] || show_audit "$after" 0 # Midnight passed during the run.
exit "$status"
