#!/usr/bin/env bash
# Uses the built program on the X display given by DISPLAY as a user does: drops files, folds, scrolls, drags, resizes,
# types, closes. What it has done is read in its files and on the screen: main-window-test.sh PROGRAM X11_CLIENT EXAMPLES.
# There need be no window manager.
set -eu

program=$1
client=$2
examples=$3
stage=$(mktemp -d)
child=
trap '[ -z "$child" ] || kill "$child" 2>/dev/null || true; rm -rf "$stage"' EXIT
failures=0

fail () {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# --- the program ---

export APPDATA=$stage/user
scratch=$stage/scratch/
audit=$scratch/Tagwright_$(LC_ALL=C date +%d%b%Y).dat
mkdir -p "$APPDATA/Kestrelbay"
echo "scratch = $scratch" >"$APPDATA/Kestrelbay/Tagwright.ini"

"$program" -x 40 800 -y 30 600 >"$stage/output" 2>&1 &
child=$!
window=$(timeout 30 xdotool search --sync --onlyvisible --name "^Kestrelbay's Tagwright 2.1 rev-2$" | tail -n 1)
xdotool windowfocus --sync "$window"

# Waits until a file holds a line this many times.
holds () { # count line file
  local i
  for i in $(seq 100); do
    [ "$(grep -cxF -e "$2" "$3" 2>/dev/null)" != "$1" ] || return 0
    sleep 0.1
  done
  fail "\"$2\" does not stand $1 times in $(basename "$3"): $(tail -n 5 "$3" 2>&1)"
}

drop () { # a list of addresses, as file managers give it
  "$client" drop "$window" text/uri-list "$(printf 'file://%s\r\n' "$@")" || fail "not dropped: $*"
}

# --- the screen ---

# Waits until a pixel of the client area, y downwards, has a colour.
pixel_is () { # what x y colour
  local i colour
  for i in $(seq 50); do
    import -window root "$stage/screen.png"
    colour=$(convert "$stage/screen.png" -format "%[hex:u.p{$((40 + $2)),$((30 + $3))}]" info:)
    [ "${colour:0:6}" != "$4" ] || return 0
    sleep 0.1
  done
  fail "$1: pixel $2, $3 is $colour, not $4"
}

point () { xdotool mousemove $((40 + $1)) $((30 + $2)); }

drag () { # from x y to x y
  point "$1" "$2"
  xdotool mousedown 1
  point $((($1 + $3) / 2)) $((($2 + $4) / 2))
  point "$3" "$4"
  xdotool mouseup 1
}

pane=B8BAC4
strip=AAAAAA
root=FF4040 # Of the block before the title.

# --- the start ---

pixel_is "the strip" 600 100 $strip
pixel_is "the tree pane" 150 400 $pane
pixel_is "the value pane" 700 400 $pane

# --- drops ---

drop "$examples/nested_a.dcm"
pixel_is "the root's block" 14 189 $root
drop "$examples/nested_b.dcm"
holds 2 "Found 3 differences" "$audit"
cp "$examples/nested_b.dcm" "$stage/a name with blanks é.dcm"
drop "$stage/a%20name%20with%20blanks%20%C3%A9.dcm"
drop "$stage/missing.dcm"
pixel_is "the root's block" 14 189 $root

# --- folding, selection, wheel ---

point 150 490
xdotool click 1 click 5 click 4

# --- separators and size ---

drag 304 400 504 400
pixel_is "the tree pane behind the old separator" 310 450 $pane
drag 400 156 400 256
pixel_is "the strip behind the old separator" 400 220 $strip
xdotool windowsize --sync "$window" 1000 700
pixel_is "the wider value pane" 950 600 $pane
xdotool windowsize --sync "$window" 60 40
xdotool windowsize --sync "$window" 800 600
pixel_is "the tree pane" 310 450 $pane

# --- keys ---

xdotool key --clearmodifiers 3
holds 1 "TRACE:   ---- Kestrelbay Libraries: ----" "$scratch/Tagwright_trace.dat"
xdotool key --clearmodifiers 0
holds 1 "REPORT: Trace level: 0" "$scratch/Tagwright_trace.dat"

# --- the end ---

"$client" close "$window"
status=0
for i in $(seq 100); do
  kill -0 "$child" 2>/dev/null || break
  sleep 0.1
done
kill -0 "$child" 2>/dev/null && fail "the program does not end" && kill "$child"
wait "$child" || status=$?
child=
[ $status = 0 ] || fail "the program ended with $status: $(tail -n 20 "$stage/output")"

[ $failures = 0 ] || exit 1
echo "the main window does what its user wants"
