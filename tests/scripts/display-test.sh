#!/usr/bin/env bash
# Shows a window on the X display given by DISPLAY, does to it what a user does, and looks at the events it tells and at the
# pixels on the screen: display-test.sh FOLDER, where the built sdl_child and x11_client are. There need be no window manager.
. "$(dirname "${BASH_SOURCE[0]}")/../support/script.sh"

folder=$1
child=
tidy () { [ -z "$child" ] || kill "$child" 2>/dev/null || true; }

# --- the child ---

start () { # words of sdl_child...
  : >"$stage/events"
  "$folder/sdl_child" "$@" >"$stage/events" 2>&1 &
  child=$!
  expect "paint 300 200"
  window=$(timeout 20 xdotool search --sync --onlyvisible --name '^Tagwright test$' | tail -n 1)
  xdotool windowfocus --sync "$window"
}

told () { grep -qxF -e "$1" "$stage/events"; }

# Waits until an event has been told.
expect () { # line
  local i
  for i in $(seq 100); do
    ! told "$1" || return 0
    sleep 0.1
  done
  fail "not told: $1 ($(tail -n 8 "$stage/events" | tr '\n' ';'))"
}

ended () { # [status]
  local i status=0
  for i in $(seq 100); do
    if ! kill -0 "$child" 2>/dev/null; then
      wait "$child" || status=$?
      [ $status -eq "${1:-0}" ] || fail "the child ended with $status"
      child=
      return
    fi
    sleep 0.1
  done
  fail "the child does not end"
  kill "$child"
  child=
}

type_key () { xdotool key --clearmodifiers "$@"; }

# --- the screen ---

picture () { import -window root "$stage/screen.png"; }

pixel_is () { # x y of the window's client area, y downwards; colour
  local colour
  colour=$(convert "$stage/screen.png" -format "%[hex:u.p{$((40 + $1)),$((30 + $2))}]" info:)
  [ "${colour:0:6}" = "$3" ] || fail "pixel $1, $2 is $colour, not $3"
}

background=0A141E
bar=C86432

# --- creation, keys and the mouse ---

start window
expect "create 300 200"
expect "open"

# What a desktop knows it by: the name that its menu entry says, and the program's icon, pixel for pixel.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
class=$(sed -n 's/^StartupWMClass=//p' "$root/packaging/linux/tagwright.desktop")
[[ "$(xprop -id "$window" WM_CLASS)" == *"\"$class\""* ]] || fail "class: $(xprop -id "$window" WM_CLASS)"
xprop -id "$window" -f _NET_WM_ICON 32x -notype _NET_WM_ICON | grep -o '0x[0-9a-fA-F]*' >"$stage/icon"
python3 - "$stage/icon" <<'END_OF_PYTHON' >"$stage/icon.rgba" || fail "the icon is no picture"
import struct, sys
numbers = [int(line, 16) for line in open(sys.argv[1])]
assert numbers[:2] == [128, 128] and len(numbers) == 2 + 128 * 128, numbers[:2]
sys.stdout.buffer.write(b"".join(struct.pack(">I", (n & 0xFFFFFF) << 8 | n >> 24) for n in numbers[2:]))
END_OF_PYTHON
distance=$(compare -metric AE -fuzz 2% -size 128x128 -depth 8 "rgba:$stage/icon.rgba" "$root/Icons/tagwright_128.png" null: 2>&1 || true)
[ "$distance" = 0 ] || fail "the icon is another picture: $distance pixels"

[ "$(grep -xF -m 1 -e open -e "paint 300 200" "$stage/events")" != open ] || fail "shown, but not drawn at once"
picture
pixel_is 0 199 $bar
pixel_is 19 100 $bar
pixel_is 20 199 $background
pixel_is 0 99 $background
pixel_is 299 0 $background

xdotool mousemove --window "$window" 50 60
expect "move 50 139"
xdotool mousemove --window "$window" 0 199
expect "move 0 0"
xdotool mousemove --window "$window" 50 60
xdotool click 1
expect "press 1 at 50 139, down 1"
expect "release 1 at 50 139, down 0"
xdotool click 2
expect "press 4 at 50 139, down 1"
xdotool click 3
expect "press 2 at 50 139, down 1"
xdotool click 4
expect "wheel 120 at 50 139"
xdotool click 5
expect "wheel -120 at 50 139"

code=1
for key in Left Right Up Down Home End Delete Prior Next; do
  type_key $key
  expect "key $code, modifiers 0"
  code=$((code + 1))
done
type_key BackSpace Tab Return Escape 3
for character in 8 9 13 27 51; do expect "character $character"; done
# Keys that the keyboard has not: an accent, a sign, and one beyond 16 bits. The server forgets them when they are made
# before the first key is pressed.
"$folder/x11_client" map 200 0xE9
"$folder/x11_client" map 201 0x20AC
"$folder/x11_client" map 202 0x101F600
sleep 0.5
type_key 200 201 202
for character in 233 8364 128512; do expect "character $character"; done
type_key shift+Left
expect "key 1, modifiers 1"
type_key ctrl+Right
expect "key 2, modifiers 2"
type_key alt+Up
expect "system key 3, modifiers 4"
type_key ctrl+x alt+y z
expect "character 122"
! told "character 120" || fail "a letter with Control is a character"
! told "character 121" || fail "a letter with Alt is a character"

# --- size, and what is drawn between events ---

xdotool windowsize --sync "$window" 400 250
expect "size 400 250"
expect "paint 400 250"
sleep 0.3
picture
pixel_is 0 249 $bar
pixel_is 0 125 $bar
pixel_is 0 124 $background
pixel_is 399 249 $background
type_key r
expect "size 250 150"
expect "paint 250 150"
type_key u
expect "updated"
picture
pixel_is 110 140 $bar
sleep 2

xdotool mousemove --window "$window" 250 10
type_key p
expect "pointer 250 139"
xdotool mousemove --window "$window" 40 10
expect "move 40 139"
type_key p
expect "pointer 40 139"
for i in 1 2 3 4 5; do type_key c; done

# --- dropped files ---

drop () { "$folder/x11_client" drop "$window" "$@" || fail "the drop is refused: $1"; }
drop text/uri-list $'file:///tmp/one%20file.dcm\r\nfile:///tmp/%C3%A9.dcm\r\n'
expect "drop 2"
expect "file /tmp/one file.dcm"
expect "file /tmp/é.dcm"
drop text/uri-list "file://$(printf '/%0200d' 1 2 3 4)/long.dcm"$'\r\n'
expect "drop 1"
expect "file $(printf '/%0200d' 1 2 3 4)/long.dcm"
drop text/uri-list "$(for i in $(seq 1000); do printf 'file:///tmp/%d.dcm\r\n' "$i"; done)"
expect "drop 1000"
expect "file /tmp/1000.dcm"
drop text/uri-list $'https://example.org/file\r\n'
expect "drop 0"
"$folder/x11_client" leave "$window"
drop text/uri-list $'file:///tmp/after.dcm\r\n'
expect "file /tmp/after.dcm"

# --- the end ---

"$folder/x11_client" close "$window"
expect "destroy"
expect "loop 0"
ended

start window
type_key q
expect "loop 7"
ended

# The server goes, or cuts the connection: the program ends and says why, rather than wait for what can't come.
start window
xdotool windowkill "$window"
ended 1
grep -qE "^(X connection to .* broken|XIO: +fatal IO error)" "$stage/events" || fail "not said: the connection is broken"

# --- capture ---

start window capture
xdotool mousemove --window "$window" 10 10 mousedown 1
expect "press 1 at 10 189, down 1"
xdotool mousemove --window "$window" -- 320 -20
expect "move 320 219"
xdotool mousemove --window "$window" -- -15 230
expect "move -15 -31"
xdotool mouseup 1
expect "release 1 at -15 -31, down 0"
type_key q
ended

# --- messages of other threads ---

start window thread
expect "posted"
type_key q
expect "loop 7"
ended

# --- boxes ---

box_open () { # key that asks for it
  type_key "$1"
  box=$(timeout 20 xdotool search --sync --onlyvisible --name '^Box of the test$' | tail -n 1)
  xdotool windowfocus --sync "$box"
}

start window ask
box_open question
type_key Return
expect "answer 1"
xdotool windowfocus --sync "$window"
type_key q
expect "loop 7"
ended

for key in Escape "Tab Return" "Right Return" close; do
  start window ask
  box_open question
  if [ "$key" = close ]; then "$folder/x11_client" close "$box"; else type_key $key; fi
  expect "answer 0"
  xdotool windowfocus --sync "$window"
  type_key q
  ended
done

# By the mouse: a press on a button that is released elsewhere counts for nothing.
start window ask
box_open question
eval "$(xdotool getwindowgeometry --shell "$box")"
xdotool mousemove --window "$box" $((WIDTH - 60)) $((HEIGHT - 34)) mousedown 1
xdotool mousemove --window "$box" 5 5 mouseup 1
xdotool mousemove --window "$box" $((WIDTH - 150)) $((HEIGHT - 34)) click 1
expect "answer 1"

# What happens to the window behind a box waits for its end.
xdotool windowfocus --sync "$window"
box_open exclam
xdotool windowsize --sync "$window" 320 240
"$folder/x11_client" close "$window"
xdotool mousemove --window "$window" 2 2 click 1
sleep 0.5
picture
! told "size 320 240" && ! told "destroy" && ! told "press 1 at 2 237, down 1" || fail "an event came while there was a box"
xdotool windowfocus --sync "$box"
type_key Return
expect "shown"
expect "size 320 240"
expect "paint 320 240"
xdotool windowfocus --sync "$window"
type_key q
expect "loop 7"
ended

finish "the window"
