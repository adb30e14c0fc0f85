#!/usr/bin/env bash
# Fuzzes: scripts/fuzz.sh SECONDS [TARGET...] runs each target (all of them, when none is named) for so many seconds, one
# after the other. The status is not 0 when something was found, and the paths of the findings are the last lines. A
# finding is an input that crashes, leaks, needs too much memory or more than a second of processor time. What a run has
# learned stays in build/fuzz/corpus, where the next one goes on.
set -eu

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
cd "$root"

usage () {
  echo "usage: scripts/fuzz.sh SECONDS [TARGET...]   (targets: $all)" >&2
  exit 2
}

all="file comparison definition configuration images command_line"
seconds=${1:-}
[[ "$seconds" =~ ^[1-9][0-9]*$ ]] || usage
shift
targets=${*:-$all}
for target in $targets; do
  case " $all " in *" $target "*) ;; *) usage ;; esac
done

build=$root/build/fuzz
scripts/install-packages.sh build fuzz
mkdir -p "$build"

# Several may fuzz at once, each another target; one builds.
exec 9>"$build/lock"
flock 9
if ! { cmake --preset fuzz && cmake --build --preset fuzz; } >"$build/build.log" 2>&1; then
  grep -E -A 8 'FAILED: |error: |CMake Error' "$build/build.log" | head -n 100
  exit 1
fi
scripts/fuzz-seeds.py "$build/seeds"
exec 9>&-

# Inputs are files of the targets' own; in memory they cost no disk.
memory=/dev/shm
[ -w "$memory" ] || memory=${TMPDIR:-/tmp}
TMPDIR=$(mktemp -d "$memory/tagwright-fuzz.XXXXXX")
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

export ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
export LSAN_OPTIONS=suppressions=$root/tests/support/leaks.supp:print_suppressions=0
options=(-timeout=10 -rss_limit_mb=2048 -report_slow_units=1 -print_final_stats=1 "-dict=$root/fuzz/dicom.dict")

# A busy machine makes any input slow, so what was slow is run again, alone, and its processor time counts.
is_slow () { # target, input
  local TIMEFORMAT=%U spent
  spent=$({ time "$build/fuzz_$1" -timeout=60 "$2" >"$build/slow.$1.log" 2>&1; } 2>&1) || return 0
  [ "${spent%%.*}" -ge 1 ]
}

# What the program writes to its standard output is closed; the reports of the sanitizers stay. An input that was only slow
# since the machine was busy ends a run, too: then another one has the seconds that are left.
fuzz () { # target
  local target=$1 findings=$build/findings/$1 corpus=$build/corpus/$1 log=$build/$1.log limit=16384
  local end=$((SECONDS + seconds)) executions=0 status=0 done=0 slow count
  [ "$target" = definition ] || [ "$target" = configuration ] || [ "$target" = images ] && limit=4096
  [ "$target" = command_line ] && limit=512
  mkdir -p "$findings" "$corpus"
  while [ $done -eq 0 ] && [ $SECONDS -lt $end ]; do
    status=0 done=1
    "$build/fuzz_$target" "${options[@]}" -max_len=$limit -max_total_time=$((end - SECONDS)) -close_fd_mask=1 \
      "-artifact_prefix=$findings/" "$corpus" "$build/seeds/$target" >"$log" 2>&1 || status=$?
    count=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    executions=$((executions + ${count:-0}))
    for slow in "$findings"/slow-unit-* "$findings"/timeout-*; do
      [ -e "$slow" ] && ! is_slow "$target" "$slow" || continue
      rm "$slow"
      [[ "$slow" != */timeout-* ]] || status=0 done=0
    done
  done
  echo "$target: $executions executions, $(grep -o 'cov: [0-9]*' "$log" | tail -n 1)," \
    "$(find "$findings" -type f | wc -l) findings"
  if [ $status -ne 0 ]; then
    grep -E -A 12 'ERROR: |runtime error: |memory stays' "$log" | head -n 40
    [ -n "$(ls -A "$findings")" ] || { echo "$target failed without an input: $log"; failed=1; }
  fi
}

failed=0
for target in $targets; do fuzz "$target"; done
found=$(for target in $targets; do find "$build/findings/$target" -type f; done)
if [ -n "$found" ]; then
  printf 'found:\n%s\n' "$found"
  failed=1
fi
exit $failed
