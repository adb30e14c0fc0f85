#!/usr/bin/env bash
# Holds what scripts/fuzz.sh refuses and counts, and that every target has seeds.
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

# --- in a made-up tree, with a stand-in for the fuzzer ---

mkdir -p "$stage/scripts" "$stage/bin" "$stage/build/fuzz"
cp "$root/scripts/fuzz.sh" "$stage/scripts"
for tool in scripts/install-packages.sh scripts/fuzz-seeds.py bin/cmake; do stand_in $tool </dev/null; done
export STAGE=$stage

# Its n-th run does what stands in the file run_N, and runs one input again as again does.
stand_in build/fuzz/fuzz_file <<'END'
for word; do
  case "$word" in -artifact_prefix=*) findings=${word#*=} ;; -max_total_time=*) echo "${word#*=}" >>"$STAGE/times" ;; esac
done
[ -n "${findings:-}" ] || { . "$STAGE/again"; exit; }
echo run >>"$STAGE/runs"
. "$STAGE/run_$(wc -l <"$STAGE/runs")"
END
run () { # seconds
  rm -f "$stage/runs" "$stage/times"
  status=0
  output=$(PATH="$stage/bin:$PATH" "$stage/scripts/fuzz.sh" "$1" file 2>&1) || status=$?
}
says () { # what is tried, status, first line
  [ $status -eq "$2" ] || fail "$1: status $status"
  [ "${output%%$'\n'*}" = "$3" ] || fail "$1: $output"
}

# An input that is only slow on a busy machine ends a run; the seconds that are left are used.
echo 'echo "cov: 7"; echo "stat::number_of_executed_units: 5"; sleep 1; echo slow >"${findings}timeout-1"; exit 70' >"$stage/run_1"
echo 'echo "cov: 9"; echo "stat::number_of_executed_units: 6"' >"$stage/run_2"
echo 'exit 0' >"$stage/again"
run 60
says "false timeout" 0 "file: 11 executions, cov: 9, 0 findings"
[ "$(head -n 1 "$stage/times")" = 60 ] && [ "$(tail -n 1 "$stage/times")" -lt 60 ] || fail "times: $(cat "$stage/times")"

# Where none are left it isn't started again, since no seconds would mean no end.
run 1
says "no time left" 0 "file: 5 executions, cov: 7, 0 findings"

# One that is slow alone as well is a finding.
echo "ulimit -t 2; while :; do :; done" >"$stage/again"
run 60
says "true timeout" 1 "file: 5 executions, cov: 7, 1 findings"
case "$output" in *"found:"*/findings/file/timeout-1) ;; *) fail "true timeout: $output" ;; esac
rm -r "$stage/build/fuzz/findings"

# So is a crash, even if a slow input was none.
echo 'exit 0' >"$stage/again"
echo 'echo "ERROR: broken"; echo x >"${findings}crash-1"; echo x >"${findings}slow-unit-1"; exit 77' >"$stage/run_1"
run 60
says "crash" 1 "file: 0 executions, , 1 findings"
case "$output" in *"ERROR: broken"*"found:"*/findings/file/crash-1) ;; *) fail "crash: $output" ;; esac
rm -r "$stage/build/fuzz/findings"

# A run that ends badly without an input isn't passed over.
echo 'exit 3' >"$stage/run_1"
run 60
says "no input" 1 "file: 0 executions, , 0 findings"
case "$output" in *"file failed without an input:"*) ;; *) fail "no input: $output" ;; esac

finish fuzz.sh
