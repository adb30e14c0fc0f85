#!/usr/bin/env bash
# Holds what scripts/fuzz.sh refuses, and that every target has seeds.
. "$(dirname "${BASH_SOURCE[0]}")/../support/script.sh"

refuses () { # arguments...
  local status=0 output
  output=$("$root/scripts/fuzz.sh" "$@" 2>&1) || status=$?
  [ $status -eq 2 ] || fail "($*): status $status"
  case "$output" in *"usage: scripts/fuzz.sh SECONDS [TARGET...]"*) ;; *) fail "($*): $output" ;; esac
}
refuses
refuses 0
refuses soon
refuses 1 nonsense
refuses 1 file nonsense

"$root/scripts/fuzz-seeds.py" "$stage"
for target in file comparison definition configuration images command_line; do
  count=$(find "$stage/$target" -name 'seed_*' -size +0 | wc -l)
  [ "$count" -ge 2 ] || fail "$target has $count seeds"
  grep -q "{\"$target\", " "$root/fuzz/fuzz.cpp" || fail "$target is no target"
done
[ "$(ls "$stage" | wc -l)" -eq 6 ] || fail "seeds of unknown targets: $(ls "$stage")"
[ "$(find "$stage/file" -name 'seed_*' | wc -l)" -ge 40 ] || fail "few files to start from"

# Each entry of the dictionary is a comment, nothing, or a quoted text whose escapes libFuzzer knows.
grep -vnE '^(#.*|"([^"\\]|\\\\|\\"|\\x[0-9A-F]{2})+")?$' "$root/fuzz/dicom.dict" && fail "bad lines in dicom.dict"

finish fuzz.sh
