#!/usr/bin/env bash
# Tests the portable package for Linux in a folder: folder-test.sh FOLDER. It is unpacked, used from elsewhere and moved.
. "$(dirname "${BASH_SOURCE[0]}")/support.sh"

archives=("$1"/tagwright-*-linux-x86_64.tar.gz)
[ ${#archives[@]} -eq 1 ] && [ -f "${archives[0]}" ] || { echo "no portable folder, or several, in $1"; exit 1; }
name=$(basename "${archives[0]}" .tar.gz)

tar -xzf "${archives[0]}" -C "$stage"
[ "$(ls -d "$stage"/*/)" = "$stage/$name/" ] || fail "the archive holds more than $name"
folder="$stage/moved to a folder with blanks"
mv "$stage/$name" "$folder"
[ "$(cd "$folder" && echo *)" = "DICOM Tables Icons LICENSE README Tagwright.ini tagwright tagwright-open tagwright_display.so" ] ||
  fail "the folder holds: $(ls "$folder")"
diff -r "$root/DICOM Tables" "$folder/DICOM Tables" || fail "tables"
diff <(cd "$root/Icons" && ls icon_*) <(ls "$folder/Icons") || fail "icons"
cmp "$root/install/Tagwright.ini" "$folder/Tagwright.ini" || fail "configuration"
cmp "$root/LICENSE" "$folder/LICENSE" || fail "licence"

compare_as_new_user "$folder/tagwright" "$folder"
show_in_window "$folder/tagwright-open"

# Nothing of the machine that built it is in it, and no table of symbols.
for file in tagwright tagwright_display.so; do
  ! strings "$folder/$file" | grep -E "$root|/tmp/" | grep -v '^/tmp/tagwright-$' || fail "paths in $file"
  file "$folder/$file" | grep -q ', stripped' || fail "$file is not stripped"
done
finish "the portable folder for Linux"
