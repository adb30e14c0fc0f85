#!/usr/bin/env bash
# Runs run.sh in a folder with blanks, with stand-ins for the build and the program, and looks at what it shows.
. "$(dirname "${BASH_SOURCE[0]}")/../support/script.sh"

user=test-$$ # run.sh looks for the audit file of this user, who is nobody's.
scratch=/tmp/tagwright-$user
tidy () { rm -rf "$scratch"; }
copy="$stage/copy with blanks"
mkdir -p "$copy/scripts" "$copy/elsewhere" "$stage/bin"
cp "$root/run.sh" "$copy/"

stand_in "copy with blanks/scripts/install-packages.sh" <<'END'
echo "$*" >"$STAGE/groups"
END
stand_in bin/id <<END
echo "$user"
END
stand_in bin/date <<'END'
cat "$STAGE/date"
END
stand_in bin/cmake <<'END'
echo "noise of the build"
[ ! -f "$STAGE/built" ] || mv "$STAGE/built" "$BUILT"
[ ! -f "$STAGE/broken" ]
END
mkdir -p "$copy/build/run"
stand_in "copy with blanks/build/run/tagwright" <<'END'
printf '<%s>' "$@"
printf '\n'
[ ! -f "$STAGE/script" ] || . "$STAGE/script"
exit "$(cat "$STAGE/status")"
END
export STAGE=$stage SCRATCH=$scratch BUILT="$copy/build/run/tagwright"

run () { # arguments...
  status=0
  output=$(cd "$copy/elsewhere" && PATH="$stage/bin:$PATH" ../run.sh "$@" 2>&1) || status=$?
}

audit=$scratch/Tagwright_21Nov2026.dat
echo 21Nov2026 >"$stage/date"
echo 7 >"$stage/status"
mkdir -p "$scratch"
echo "an earlier run" >"$audit"

# The audit file grew.
echo 'echo "one difference" >>"$SCRATCH/Tagwright_21Nov2026.dat"' >"$stage/script"
run "a b.dcm" c.dcm
[ $status -eq 7 ] || fail "status of the program: $status"
[ "$output" = "<a b.dcm><c.dcm>
--- $audit ---
one difference" ] || fail "lines of this run: $output"
[ "$(cat "$stage/groups")" = build ] || fail "packages of the build are installed"

# It stayed as it is.
rm "$stage/script"
run a.dcm a.dcm
[ "$output" = "<a.dcm><a.dcm>" ] || fail "nothing was added: $output"

# It was begun anew, or is the first of its day.
echo 'echo "new" >"$SCRATCH/Tagwright_21Nov2026.dat"' >"$stage/script"
run a.dcm b.dcm
[ "$output" = "<a.dcm><b.dcm>
--- $audit ---
new" ] || fail "a file begun anew: $output"
rm -r "$scratch"
echo 'mkdir "$SCRATCH"; echo "first" >"$SCRATCH/Tagwright_21Nov2026.dat"' >"$stage/script"
run a.dcm b.dcm
[ "$output" = "<a.dcm><b.dcm>
--- $audit ---
first" ] || fail "the first file: $output"

# Midnight passes.
echo 'echo "before" >>"$SCRATCH/Tagwright_21Nov2026.dat"
echo "after" >"$SCRATCH/Tagwright_22Nov2026.dat"
echo 22Nov2026 >"$STAGE/date"' >"$stage/script"
run a.dcm b.dcm
[ "$output" = "<a.dcm><b.dcm>
--- $audit ---
before
--- $scratch/Tagwright_22Nov2026.dat ---
after" ] || fail "midnight: $output"

# No words: the window, and nothing of what its comparisons wrote.
echo 0 >"$stage/status"
echo 'echo "more" >>"$SCRATCH/Tagwright_22Nov2026.dat"' >"$stage/script"
run
[ $status -eq 0 ] && [ "$output" = "<>" ] || fail "no words: $status ($output)"

# The first build says that it takes its time.
mv "$BUILT" "$stage/built"
run
[ "$output" = "run.sh: building the program, which takes a minute or two
<>" ] || fail "the first build: $output"

# A build that fails shows itself.
touch "$stage/broken"
run a.dcm b.dcm
[ $status -eq 1 ] || fail "status of a failing build: $status"
[ "$output" = "noise of the build
run.sh: the build failed" ] || fail "a failing build: $output"

finish run.sh
