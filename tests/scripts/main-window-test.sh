#!/usr/bin/env bash
# The whole program on the X display given by DISPLAY, as its user meets it: files are dropped, sequences unfolded,
# separators dragged; then what the screen shows is looked at: main-window-test.sh PROGRAM X11_CLIENT
# PICTURES. There must be no window manager. Nothing waits for a time: each step waits for what it brings about. A failure
# leaves a picture of the screen in the folder PICTURES.
. "$(dirname "${BASH_SOURCE[0]}")/../support/script.sh"

program=$1
client=$2
pictures=$3
mkdir -p "$pictures"
examples=$root/examples
running=
tidy () { [ -z "$running" ] || kill "$running" 2>/dev/null || true; }

fail () { # what is wrong
  echo "FAILED: $*"
  failures=$((failures + 1))
  import -window root "$pictures/main_window_$failures.png" || true
}

# Waits until a command succeeds; 0 when it did in time.
until_true () { # command...
  local i
  for i in $(seq 300); do
    ! "$@" || return 0
    sleep 0.05
  done
  return 1
}

# --- the program ---

export APPDATA=$stage/appdata
scratch=$stage/scratch
audit=$scratch/Tagwright_$(LC_ALL=C date +%d%b%Y).dat
mkdir -p "$APPDATA/Kestrelbay"
echo "scratch = $scratch" >"$APPDATA/Kestrelbay/Tagwright.ini"
cp -r "$examples/../DICOM Tables" "$APPDATA/Kestrelbay/" # As a start leaves them; copying costs the time of each.

start () { # options... The lines of its log stand in the file lines when a trace is asked for.
  : >"$stage/lines"
  "$program" "$@" >"$stage/lines" 2>&1 &
  running=$!
  window=$(timeout 30 xdotool search --sync --onlyvisible --name "^Kestrelbay's Tagwright 2.1 rev-2$" | tail -n 1)
  xdotool windowfocus --sync "$window"
}

ended () { ! kill -0 "$running" 2>/dev/null; }

# Asks the window to close, as its close box does.
end_program () {
  "$client" close "$window"
  if ! until_true ended; then
    fail "the program does not end"
    kill "$running"
  fi
  local status=0
  wait "$running" || status=$?
  running=
  [ "$status" -eq 0 ] || fail "the program ended with $status ($(tail -n 5 "$stage/lines"))"
}

# --- what it says ---

told_times () { grep -cF -e "$1" "$stage/lines" || true; }
told_again () { [ "$(told_times "$1")" -gt "$2" ]; }

expect () { # part of a line
  until_true told_again "$1" 0 || fail "not told: $1 ($(tail -n 12 "$stage/lines"))"
}

audited () { [ "$(grep -cxF -e "$1" "$audit" 2>/dev/null)" = "$2" ]; }

expect_audit () { # line, how often it stands there
  until_true audited "$1" "$2" || fail "audit file: $1 ($(cat "$audit"))"
}

# --- what it shows ---

blue=0000FF
green=00A000
yellow=FFFF00
black=000000
red=FF0000
grey=AAAAAA # Of the text list.
pane=B8BAC4

list="0 0 770 150" # Places while the window has its first size.
tree="10 180 266 380"
value="330 180 450 380"

count () { "$client" count "$window" "$@" 2>/dev/null || echo 0; } # None while the window is not seen whole.
count_is () { [ "$(count $1 "$2")" "$3" "$4" ]; }

expect_pixels () { # place colour comparison number what
  until_true count_is "$@" || fail "$5: $(count $1 "$2") pixels of $2, not $3 $4"
}

# --- what its user does ---

# An address of each file, as a file manager writes them: bytes but letters, digits and a few signs in hexadecimal.
addresses () { # paths...
  local path
  for path in "$@"; do
    python3 -c 'import sys, os, urllib.parse; print ("file://" + urllib.parse.quote (os.fsencode (sys.argv[1])), end="\r\n")' "$path"
  done
}

drop_list () { "$client" drop "$window" text/uri-list "$1" || fail "the drop is refused"; }

# Drops files and waits for the end of the comparison.
drop () { # paths...
  local done
  done=$(told_times "Done")
  drop_list "$(addresses "$@")"
  until_true told_again "Done" "$done" || fail "the comparison does not end: $*"
}

click () { xdotool mousemove --window "$window" "$1" "$2" click "${3-1}"; }
drag () { xdotool mousemove --window "$window" "$1" "$2" mousedown 1 mousemove --window "$window" "$3" "$4" mouseup 1; }

# --- no display ---

status=0
errors=$(env -u DISPLAY -u WAYLAND_DISPLAY timeout 30 "$program" 2>&1 </dev/null) || status=$?
[ $status -ne 124 ] || fail "without a display the program hangs"
case "$errors" in
  *"is DISPLAY or WAYLAND_DISPLAY set"*"tagwright file_a file_b"*) ;;
  *) fail "without a display: $errors" ;;
esac

# --- help, one file, a second one ---

start
expect_pixels "$list" $green -ge 20 "the legend's green"
expect_pixels "$list" $yellow -ge 20 "the legend's yellow"
expect_pixels "$list" $blue -ge 20 "the legend's blue"
expect_pixels "$tree" $pane -ge 100000 "an empty tree"
expect_pixels "$value" $pane -eq 171000 "no values"

drop_list "$(addresses "$examples/ct_a.dcm")"
expect_audit "Found 43 differences" 2
expect_pixels "$tree" $blue -ge 200 "attributes of the modality only"
expect_pixels "$tree" $black -ge 30 "attributes of both"
expect_pixels "$value" $black -ge 30 "values"
expect_pixels "$value" $blue -eq 0 "no values of the modality"
expect_pixels "$list" $yellow -eq 0 "the legend is scrolled away"
drop_list "$(addresses "$examples/ct_b.dcm")"
expect_audit "Found 12 differences" 2
expect_pixels "$value" $blue -ge 30 "equal values"
expect_pixels "$value" $black -ge 10 "different values"
[ ! -e "$scratch/Tagwright_trace.dat" ] || fail "a trace nobody asked for"

# --- folding, selecting, the wheel ---

box="19 464 1 1"          # A pixel of the upright line in the plus sign of the sequence on line 15.
row="50 455 225 18"       # That line's texts,
below="40 473 30 18"      # and the next line's icon.
expect_pixels "$box" $black -eq 1 "a plus sign"
click 19 466
expect_pixels "$box" $black -eq 0 "a minus sign"
expect_pixels "$box" FFFFFF -eq 1 "a minus sign"
expect_pixels "85 473 100 18" $black -ge 20 "the first item's difference"
click 19 466
expect_pixels "$box" $black -eq 1 "a plus sign again"

before=$(count $row $black)
click 120 466
expect_pixels "$row" $black -gt $((before + 20)) "a selected line is bold"
expect_pixels "$box" $black -eq 1 "a click beside the box does not unfold"
click 400 448 # In the value pane.
expect_pixels "$row" $black -eq "$before" "the line before is not"

xdotool mousemove --window "$window" 100 300 # The mouse wheel scrolls the tree.
root="10 180 20 20"
expect_pixels "$root" FF4040 -ge 20 "the root's glyph"
xdotool click 5 click 5 click 5
expect_pixels "$root" FF4040 -eq 0 "the tree scrolls down"
xdotool click 4 click 4 click 4
expect_pixels "$root" FF4040 -ge 20 "the tree scrolls up"
click 400 80 # The text list, which has the wheel from then on.
for i in 1 2 3 4 5; do xdotool click 4; done
expect_pixels "$list" $yellow -ge 20 "the text list scrolls up to the legend"
expect_pixels "$root" FF4040 -ge 20 "the tree stays meanwhile"

# --- separators and sizes ---

expect_pixels "450 250 1 1" $pane -eq 1 "a pane below the separator"
drag 400 156 400 300
expect_pixels "450 250 1 1" $grey -eq 1 "the text list is higher"
drag 400 300 400 156
expect_pixels "450 250 1 1" $pane -eq 1 "the text list is lower"
expect_pixels "322 400 2 1" $grey -eq 2 "the right separator"
drag 322 400 600 400
expect_pixels "340 370 200 90" $blue -ge 50 "descriptions"
drag 304 400 500 400
expect_pixels "330 401 140 18" $black -ge 20 "the whole line of the tree"

xdotool windowmove --sync "$window" 0 0
for size in "60 40" "1 1" "2000 1100" "400 300" "800 600"; do
  xdotool windowsize --sync "$window" $size
done
expect_pixels "10 180 20 20" FF4040 -ge 20 "the result is drawn after sizes small and large"
xdotool windowsize --sync "$window" 1600 1000
expect_pixels "1500 996 5 3" $pane -eq 15 "the result fills a large window"

# --- keys ---

xdotool windowfocus --sync "$window" key 9
xdotool key 3
trace_begun () { grep -qsF "Prog_ID:      TAGWRIGHT 21000020" "$scratch/Tagwright_trace.dat"; }
until_true trace_begun || fail "a key begins no trace"
expect "Prog_ID:      TAGWRIGHT 21000020"
[ "$(told_times "REPORT:  TAGWRIGHT 21000020")" -eq 0 ] || fail "the key before it begins one"
xdotool key 9
expect "REPORT:  TAGWRIGHT 21000020"
xdotool key 7
expect "Trace level: 5"
expect "TRACE:   ---- Kestrelbay Libraries: ----"
xdotool key 0
expect "REPORT:  Trace level: 0"
end_program

# --- places and sizes that are asked for ---

geometry_is () { xdotool getwindowgeometry "$window" | grep -q "Geometry: $1\$"; }
position_is () { xdotool getwindowgeometry "$window" | grep -q "Position: $1 "; }

start -x 40 640 -y 70 480 # A window manager would put its frame there, and the window inside.
until_true position_is 40,70 || fail "a place: $(xdotool getwindowgeometry "$window")"
until_true geometry_is 640x480 || fail "a size: $(xdotool getwindowgeometry "$window")"
end_program

start -x 3 # What isn't said is 0.
until_true geometry_is 136x600 || fail "a width of 0: $(xdotool getwindowgeometry "$window")"
end_program
start -y -20 400 -x 0 99999
until_true geometry_is 2100x400 || fail "a huge width: $(xdotool getwindowgeometry "$window")"
end_program

# --- files of all kinds ---

start -t 1
drop "$examples/ct_a.dcm" "$examples/ct_b.dcm"
expect "Comparing 2 files..."
expect "Found 12 differences"
[ "$(told_times "Modality description")" -eq 0 ] || fail "two files are compared with one another"

drop "$examples"
expect "Is a directory"
drop "$stage/none.dcm"
expect "No such file or directory"
mkfifo "$stage/pipe.dcm"
drop "$stage/pipe.dcm"
expect "file: ($stage/pipe.dcm)"
: >"$stage/empty.dcm"
drop "$stage/empty.dcm"
expect "End of File while reading: (0 /vs/ 4) ($stage/empty.dcm)"

folder="$stage/Größe 100% #1; \$(x) 'y' 日本"
mkdir "$folder"
cp "$examples/ct_a.dcm" "$folder/first file.dcm"
cp "$examples/ct_b.dcm" "$folder/zweite Höhe.dcm"
drop "$folder/first file.dcm" "$folder/zweite Höhe.dcm"
expect "first file.dcm" # The window shows the other letters; the log has ASCII only.
[ "$(told_times "REPORT:  Found 12 differences")" -eq 4 ] || fail "names of all characters"

long=$stage/$(printf 'd%.0s' $(seq 200))/$(printf 'f%.0s' $(seq 100)).dcm
mkdir -p "$(dirname "$long")"
cp "$examples/ct_a.dcm" "$long"
comparisons=$(told_times "Compare A:")
drop "$long"
expect "Path is longer than 260 characters, not compared: $long"
[ "$(told_times "Compare A:")" -eq "$comparisons" ] || fail "a name that is too long is not compared"

# The last two files of a thousand, in one comparison.
done=$(told_times "Done")
drop_list "$(for i in $(seq 998); do printf 'file:///none/%d.dcm\r\n' "$i"; done
             addresses "$examples/nested_a.dcm" "$examples/nested_b.dcm")"
until_true told_again "Done" "$done" || fail "a thousand files: no end"
expect "Comparing 1000 files..."
expect "Compare A: $examples/nested_a.dcm"
expect "Found 3 differences"
[ "$(told_times "Compare A:")" -eq $((comparisons + 1)) ] || fail "a thousand files: one comparison"
expect_pixels "$tree" $blue -ge 200 "the window is as before"

# What is no file of this machine drops nothing: the comparison is repeated.
done=$(told_times "Done")
drop_list $'https://example.org/file\r\n'
until_true told_again "Done" "$done" || fail "a drop of no file"
expect "Comparing 0 file..."
end_program

finish "the program"
