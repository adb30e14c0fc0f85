#!/usr/bin/env bash
# Tells how much of the program the tests run: scripts/coverage.sh builds them with counters, runs them and prints the lines
# and the outcomes of conditions that were reached, by folder and by file. Those that were not stand in
# build/coverage/uncovered.txt. The status is not 0 when a test fails or a goal is missed (scripts/coverage-report.py).
# scripts/coverage.sh --corpus [FOLDER] tells instead what the fuzzer's inputs reach: its seeds, and what it has learned
# (build/fuzz/corpus). There is no goal for them; what they don't reach stands in build/coverage/uncovered-by-corpus.txt.
set -eu

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")

usage () {
  echo "usage: scripts/coverage.sh [--corpus [FOLDER]]" >&2
  exit 2
}

corpus=
case "$#${1:-}" in
  0) ;;
  1--corpus) corpus=$root/build/fuzz/corpus ;;
  2--corpus) corpus=$(readlink -f "$2") ;;
  *) usage ;;
esac
[ -z "$corpus" ] || [ -d "$corpus" ] || { echo "scripts/coverage.sh: $corpus is no folder" >&2; exit 2; }

cd "$root"
unset LLVM_PROFILE_FILE
build=$root/build/coverage
scripts/install-packages.sh build test coverage
mkdir -p "$build"
if ! { cmake --preset coverage && cmake --build --preset coverage; } >"$build/build.log" 2>&1; then
  grep -E -A 8 'FAILED: |error: |CMake Error|undefined reference' "$build/build.log" | head -n 100
  exit 1
fi

# The inputs of each target, many to a process, each of which adds to the same counters. They are copied first: a fuzzer
# that runs meanwhile replaces some by smaller ones.
replay () {
  export LLVM_PROFILE_FILE=$profiles/%m%c.profraw
  local folder target
  rm -rf "$build/corpus"
  cp -r "$corpus" "$build/corpus" || true
  scripts/fuzz-seeds.py "$build/seeds"
  for folder in "$build"/seeds/*/; do
    target=$(basename "$folder")
    mkdir -p "$build/corpus/$target"
    find "$folder" "$build/corpus/$target" -type f -print0 |
      xargs -0 -n 1000 "$build/fuzz_$target" -close_fd_mask=1 >"$build/replay.log" 2>&1 ||
      { tail -n 20 "$build/replay.log"; return 1; }
    echo "$target: $(find "$folder" "$build/corpus/$target" -type f | wc -l) inputs"
  done
}

failed=0
if [ -n "$corpus" ]; then
  profiles=$build/corpus-profiles uncovered=$build/uncovered-by-corpus.txt goals=
  rm -rf "$profiles"
  replay || failed=1
else
  profiles=$build/profiles uncovered=$build/uncovered.txt goals=scripts/coverage-unreachable.txt
  rm -rf "$profiles"
  # Whoever tests a script or the sources' form runs nothing of the program.
  ctest --preset coverage --parallel "$(nproc)" --label-exclude sources >"$build/tests.log" 2>&1 || failed=1
  [ $failed -eq 0 ] || { grep -E 'FAILED|\*\*\*|tests failed' "$build/tests.log" | head -n 100; echo "the whole of it: $build/tests.log"; }
fi

# Which code there is stands in the programs and in the module that draws, which names functions alike.
export_counts () { # name, profiles, programs...
  local name=$build/$1 counts=$2
  shift 2
  # shellcheck disable=SC2086 # A pattern.
  llvm-profdata-14 merge $counts -o "$name.profdata"
  llvm-cov-14 export --skip-expansions --skip-functions -instr-profile="$name.profdata" "$@" >"$name.json"
}

programs=("$build/tagwright")
for program in "$build"/tests/*_test; do programs+=(-object "$program"); done
export_counts program "$profiles/[0-9]*.profraw" "${programs[@]}"
exports=("$build/program.json")
if [ -z "$corpus" ]; then
  export_counts module "$profiles/module-*.profraw" "$build/tagwright_display.so"
  exports+=("$build/module.json")
fi
scripts/coverage-report.py "$root" "$uncovered" "$goals" "${exports[@]}" || failed=1
echo
echo "not reached: $uncovered"
exit $failed
