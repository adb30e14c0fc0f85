#!/usr/bin/env bash
# Runs scripts/coverage.sh in a made-up source tree, with stand-ins for the tools that build, run and count.
. "$(dirname "${BASH_SOURCE[0]}")/../support/script.sh"
export STAGE=$stage

# --- a tree with one source in each folder, all of it covered ---

engine="attribute nema syntax tables compare util platform/posix"
mkdir -p "$stage/bin" "$stage/scripts" "$stage/build/coverage/tests"
cp "$root"/scripts/coverage.sh "$root"/scripts/coverage-report.py "$stage/scripts"
for folder in $engine tools view app platform/sdl; do
  mkdir -p "$stage/$folder"
  printf 'int f (int x) {\n    if (x > 1) return 1;\n    return 0;\n}\n' >"$stage/$folder/one.cpp"
done
stand_in scripts/install-packages.sh <<'END'
echo "packages $*" >>"$STAGE/calls"
END
stand_in bin/cmake <<'END'
echo "cmake $*" >>"$STAGE/calls"
END
stand_in bin/ctest <<'END'
echo "ctest $*" >>"$STAGE/calls"
mkdir -p "$STAGE/build/coverage/profiles"
touch "$STAGE/build/coverage/profiles/1.profraw" "$STAGE/build/coverage/profiles/module-1.profraw"
[ ! -e "$STAGE/test_fails" ] || { echo "3 - view (FAILED)"; exit 8; }
END
stand_in bin/llvm-profdata-14 <<'END'
echo "merge $*" >>"$STAGE/calls"
END
stand_in bin/llvm-cov-14 <<'END'
cat "$STAGE/export"
END
stand_in scripts/fuzz-seeds.py <<'END'
mkdir -p "$1/file" && touch "$1/file/seed"
END
stand_in build/coverage/fuzz_file <<'END'
echo "replay $*" >>"$STAGE/calls"
mkdir -p "$STAGE/build/coverage/corpus-profiles"
touch "$STAGE/build/coverage/corpus-profiles/1.profraw"
END

# What llvm-cov would say: for each folder how often the function ran, its condition held, and its last line ran.
source_of () { # folder, runs, true, false
  printf '{"filename": "%s/%s/one.cpp", "branches": [[2, 9, 2, 14, %s, %s, 0, 0, 4]], "segments": ' "$stage" "$1" "$3" "$4"
  printf '[[1, 15, %s, true, true, false], [2, 16, %s, true, true, false], ' "$2" "$3"
  printf '[2, 24, %s, true, true, true], [3, 5, %s, true, true, false], ' "$4" "$4"
  printf '[3, 13, %s, true, false, false], [4, 2, 0, false, false, false]]}' "$2"
}

export_of () { # the folder that differs, and its runs, true, false
  local folder separator='{"data": [{"files": ['
  for folder in $engine tools view app platform/sdl; do
    printf %s "$separator"
    if [ "$folder" = "${1:-}" ]; then source_of "$@"; else source_of "$folder" 5 2 3; fi
    separator=,
  done >"$stage/export"
  echo ']}]}' >>"$stage/export"
}

run () { # arguments...
  : >"$stage/calls"
  rm -f "$stage/build/coverage/uncovered.txt"
  status=0
  output=$(PATH="$stage/bin:$PATH" "$stage/scripts/coverage.sh" "$@" 2>&1) || status=$?
  uncovered=$(cat "$stage/build/coverage/uncovered.txt" 2>/dev/null || true)
}

says () { # what it should say, why it should
  case "$output" in *"$1"*) ;; *) fail "$2: no \"$1\" in: $output" ;; esac
}

# --- goals ---

: >"$stage/scripts/coverage-unreachable.txt"
export_of
run
[ $status -eq 0 ] || fail "all is covered, yet: $status ($output)"
[ -f "$stage/build/coverage/uncovered.txt" ] || fail "says nowhere what is not covered"
[ -z "$uncovered" ] || fail "all is covered, yet: $uncovered"
[[ "$output" =~ nema/one.cpp\ +4/4\ +100.0\ %\ +2/2\ +100.0\ % ]] || fail "no row of a file: $output"
[[ "$output" =~ platform/posix\ +4/4\ +100.0\ %\ +2/2\ +100.0\ % ]] || fail "no row of a folder: $output"
grep -qx 'packages build test coverage' "$stage/calls" || fail "installs something else: $(cat "$stage/calls")"
grep -q '^ctest --preset coverage' "$stage/calls" || fail "runs no tests"
grep -q '^merge merge .*/profiles/1.profraw -o' "$stage/calls" || fail "merges nothing: $(cat "$stage/calls")"
grep -q '^merge merge .*/profiles/module-1.profraw -o' "$stage/calls" || fail "merges nothing of the module"

export_of syntax 5 5 0
run
[ $status -eq 1 ] || fail "a line of four is missed in syntax: status $status"
says "syntax: less than 95 % of the lines" "a folder below the goal"
[ "$uncovered" = "syntax/one.cpp:3: never ran: return 0;
syntax/one.cpp:2:9: never false: x > 1" ] || fail "uncovered: $uncovered"

export_of app 0 0 0
run
[ $status -eq 0 ] || fail "there is no goal for app: status $status"
[[ "$output" =~ app/one.cpp\ +0/4\ +0.0\ % ]] || fail "a file that never ran: $output"

# What only the compiler ran is no line of a program, but a function of both is.
sed -i '1s/^/static constexpr /' "$stage/app/one.cpp"
run
[ $status -eq 0 ] && [ -f "$stage/build/coverage/uncovered.txt" ] || fail "a constexpr function: $status ($output)"
[ -z "$uncovered" ] || fail "what the compiler evaluates counts: $uncovered"
export_of app 5 5 0
run
[ "$uncovered" = "app/one.cpp:3: never ran: return 0;
app/one.cpp:2:9: never false: x > 1" ] || fail "a constexpr function that ran: $uncovered"

# One outcome of the reader is missed, though every line ran.
export_of nema 5 0 5
run
[ $status -eq 1 ] || fail "an outcome of the reader is missed: status $status"
says "nema/one.cpp:2: never true: x > 1" "an outcome of the reader"
printf '# x is never large.\nnema/one.cpp f true x > 1\n' >"$stage/scripts/coverage-unreachable.txt"
run
[ $status -eq 0 ] || fail "what no input reaches is excused: status $status ($output)"
printf 'nema/one.cpp g true x > 1\n' >"$stage/scripts/coverage-unreachable.txt"
run
[ $status -eq 1 ] || fail "an entry for another function: status $status"
printf 'nema/one.cpp f true x > 1\n' >"$stage/scripts/coverage-unreachable.txt"
export_of
run
[ $status -eq 1 ] || fail "an entry excuses nothing: status $status"
says "called unreachable: nema/one.cpp f true x > 1" "an entry that excuses nothing"
: >"$stage/scripts/coverage-unreachable.txt"

touch "$stage/test_fails"
run
[ $status -eq 1 ] || fail "a test failed: status $status"
says "view (FAILED)" "a test that failed"
rm "$stage/test_fails"

# --- the corpus, which has no goals ---

mkdir -p "$stage/learned/file"
touch "$stage/learned/file/a" "$stage/learned/file/b"
export_of nema 0 0 0
run --corpus "$stage/learned"
[ $status -eq 0 ] || fail "the corpus: status $status ($output)"
says "file: 3 inputs" "the corpus and the seed"
grep -q '^replay -close_fd_mask=1 .*corpus/file/a' "$stage/calls" || fail "replays nothing: $(cat "$stage/calls")"
grep -q '^ctest' "$stage/calls" && fail "the corpus needs no tests"
[ -s "$stage/build/coverage/uncovered-by-corpus.txt" ] || fail "does not say what the corpus missed"

for words in "--corpus" "--corpus $stage/nowhere" "--corpora" "1"; do
  run $words
  [ $status -eq 2 ] || fail "($words): status $status"
done

finish coverage.sh
