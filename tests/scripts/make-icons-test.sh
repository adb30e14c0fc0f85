#!/usr/bin/env bash
# Holds Icons/ to scripts/make-icons.py, and looks at what the script writes and how it checks.
. "$(dirname "${BASH_SOURCE[0]}")/../support/script.sh"

make_icons () { python3 "$root/scripts/make-icons.py" "$@"; }

# What is committed is what the script makes, and there is nothing else.
make_icons --check "$root/Icons" || fail "Icons/ is not up to date: run scripts/make-icons.py and commit what it writes"
make_icons "$stage/first"
make_icons "$stage/second"
diff -r "$stage/first" "$stage/second" || fail "two runs differ"
[ "$(ls "$root/Icons")" = "$(ls "$stage/first")" ] || fail "files in Icons/: $(ls "$root/Icons")"

# The check finds a missing file, a changed byte in each kind of file, and what was added.
change () { printf '\x01' | dd of="$stage/second/$1" bs=1 seek="$2" conv=notrunc status=none; }
rm "$stage/second/icon_type_3.tga"
change icon_dot.tga 400
printf 'x' >>"$stage/second/icon_type_1.tga"
change tagwright.ico 500
change tagwright.png 500
! make_icons --check "$stage/second" >"$stage/output" 2>&1 || fail "changes are not noticed"
expected=$(for name in icon_dot.tga icon_type_1.tga icon_type_3.tga tagwright.ico tagwright.png; do
  echo "$stage/second/$name is not what make-icons.py makes"
done)
[ "$(cat "$stage/output")" = "$expected" ] || fail "the check says: $(cat "$stage/output")"

# A compressor of another make changes the bytes and not the picture.
python3 - "$root/scripts" "$stage/second" <<'END_OF_PYTHON'
import importlib, os, sys, zlib
sys.path.insert(0, sys.argv[1])
sys.dont_write_bytecode = True
make_icons = importlib.import_module("make-icons")
compress = zlib.compress
make_icons.zlib.compress = lambda content, level: compress(content, 1)
for name, content in make_icons.make().items():
    with open(os.path.join(sys.argv[2], name), "wb") as file:
        file.write(content)
END_OF_PYTHON
! cmp -s "$stage/first/tagwright.ico" "$stage/second/tagwright.ico" || fail "the other compressor does the same"
make_icons --check "$stage/second" || fail "the check looks at packed bytes"

# What readers of these files expect: 24-bit TARGA of 16 by 16 and nothing more; ICO pictures within the file.
for file in "$stage"/first/*.tga; do
  [ "$(wc -c <"$file")" -eq 786 ] || fail "size of $file"
  [ "$(od -An -tu1 -N18 "$file" | tr -s ' \n' ' ')" = " 0 0 2 0 0 0 0 0 0 0 0 0 16 0 16 0 24 0 " ] || fail "header of $file"
done
python3 - "$stage/first" <<'END_OF_PYTHON' || fail "pictures in the ICO file"
import struct, sys
png = open(sys.argv[1] + "/tagwright.png", "rb").read()
ico = open(sys.argv[1] + "/tagwright.ico", "rb").read()
assert struct.unpack_from("<HHH", ico) == (0, 1, 4)
place = 6 + 16 * 4
for index, size in enumerate((16, 32, 48, 256)):
    width, height, colours, _, planes, bits, count, start = struct.unpack_from("<BBBBHHII", ico, 6 + 16 * index)
    assert (width, height, colours, planes, bits, start) == (size & 255, size & 255, 0, 1, 32, place), index
    content = ico[start:start + count]
    assert len(content) == count
    if size == 256:
        assert content == png and png[16:26] == struct.pack(">IIBB", 256, 256, 8, 6)
    else:
        assert struct.unpack_from("<IiiHH", content) == (40, size, 2 * size, 1, 32)
        assert count == 40 + size * size * 4 + (size + 31) // 32 * 4 * size
    place += count
assert place == len(ico)
END_OF_PYTHON

# Words it doesn't know.
for words in "--check" "--help" "a b" "--check a b"; do
  ! (cd "$stage" && make_icons $words) >"$stage/output" 2>&1 || fail "accepted: $words"
  [ "$(cat "$stage/output")" = "usage: make-icons.py [FOLDER] | --check FOLDER" ] || fail "$words: $(cat "$stage/output")"
done
[ "$(ls "$stage")" = "first
output
second" ] || fail "left behind: $(ls "$stage")"

finish make-icons.py
