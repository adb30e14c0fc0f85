# What the tests of packages have in common; they source it.
. "$(dirname "${BASH_SOURCE[0]}")/../support/script.sh"
set -o pipefail

# Two examples that differ in 12 places, compared from another folder by a user who has nothing yet. The tables that the
# program copies for the user are those of the folder named, which the trace says.
compare_as_new_user () { # program, data folder
  local user=$stage/user status=0 trace
  rm -rf "$user"
  mkdir -p "$user/data" "$user/Kestrelbay" "$user/elsewhere"
  echo "scratch = $user/scratch" >"$user/Kestrelbay/Tagwright.ini"
  trace=$(cd "$user/elsewhere" && APPDATA="$user" "$1" -t 1 "$root/examples/ct_a.dcm" "$root/examples/ct_b.dcm") || status=$?
  [ $status -eq 12 ] || fail "exit status $status instead of 12 differences"
  grep -qF "copying all files from: $2/DICOM Tables/" <<<"$trace" ||
    fail "tables come from elsewhere than $2: $(grep -F "Path = " <<<"$trace")"
  diff -r "$root/DICOM Tables" "$user/Kestrelbay/DICOM Tables" || fail "the user's tables"
  ! grep -F WARNING <<<"$trace" || fail "a new user is warned"
}

# Two files are opened as a file manager does it, on a screen of the test's own. The window has the program's title, shows
# the result in more than the colours of an empty window, and goes when it is closed.
show_in_window () { # tagwright-open
  APPDATA="$stage/user" xvfb-run -a -s "-screen 0 1024x768x24 -nolisten tcp" bash -eu -c '
    "$1" "$2/ct_a.dcm" "$2/ct_b.dcm" &
    window=$(timeout 60 xdotool search --sync --onlyvisible --name "^Kestrelbay.s Tagwright " | tail -n 1)
    for i in $(seq 100); do
      grep -q "^Found 12 differences" "$3"/Tagwright_*.dat 2>/dev/null && break
      sleep 0.2
    done
    kill %1
    [ -n "$window" ] && grep -q "^Found 12 differences" "$3"/Tagwright_*.dat
  ' shell "$1" "$root/examples" "$stage/user/scratch" || fail "no result in a window of $1"
}
