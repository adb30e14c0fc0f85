#!/usr/bin/env bash
# Tests what can be tested of the packages in seconds: install-test.sh BUILD-FOLDER. Both layouts are installed from the
# built tree and used, and the texts that the packages bring are checked. scripts/release.sh tests the packages themselves.
. "$(dirname "${BASH_SOURCE[0]}")/support.sh"
build=$1

# --- both layouts ---

cmake --install "$build" --prefix "$stage/a system/usr" >"$stage/log" 2>&1 || fail "installing: $(tail -n 5 "$stage/log")"
bin="$stage/a system/usr/bin"
compare_as_new_user "$bin/tagwright" "$bin/../share/tagwright"
cmake --install "$build" --component folder --prefix "$stage/one folder" >"$stage/log" 2>&1 ||
  fail "installing a folder: $(tail -n 5 "$stage/log")"
compare_as_new_user "$stage/one folder/tagwright" "$stage/one folder"
show_in_window "$stage/one folder/tagwright-open"
[ "$(cd "$stage/one folder" && echo *)" = "DICOM Tables Icons LICENSE README Tagwright.ini tagwright tagwright-open tagwright_display.so" ] ||
  fail "the folder holds: $(ls "$stage/one folder")"
grep -qF "Tagwright $(sed -n 's/^#define PROGRAM_VERSION .*"\(.*\)"/\1/p' "$root/app/start_up.h")" "$stage/one folder/README" ||
  fail "README says another version: $(head -n 1 "$stage/one folder/README")"

# --- desktop entry, man page, Debian's texts ---

desktop-file-validate "$root/packaging/linux/tagwright.desktop" || fail "desktop entry"
! groff -man -ww -z "$root/packaging/tagwright.1" 2>&1 | grep . || fail "man page"
. "$build/packaging/version.sh"
grep -q "^\.TH TAGWRIGHT 1 .*\"Tagwright $version_shown\"" "$root/packaging/tagwright.1" || fail "the man page says another version"
read -r package version rest <"$root/packaging/debian/changelog"
[ "$package $version" = "tagwright ($version_number-1)" ] || fail "Debian's changelog says $package $version"
grep -q "^## $version_shown" "$root/CHANGELOG.md" || fail "CHANGELOG.md doesn't have $version_shown"
diff <(sed -n '/^Permission/,$p' "$root/LICENSE") \
  <(sed -n '/^ Permission/,$p' "$root/packaging/debian/copyright" | sed 's/^ //; s/^\.$//') || fail "Debian's copyright"

# --- the completion of bash ---

complete () { # words of the command line...; prints what the last of them may become
  (cd "$stage/files" && bash -c '
    complete () { :; }
    . "$0"
    unset -f complete
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
    _tagwright
    printf "<%s>" "${COMPREPLY[@]}"' "$root/packaging/linux/tagwright.bash-completion" tagwright "$@")
}

completes () { # expected, words...
  local expected=$1 found
  shift
  found=$(complete "$@")
  [ "$found" = "$expected" ] || fail "completion of $*: $found"
}

mkdir -p "$stage/files"
touch "$stage/files/first file.dcm" "$stage/files/first.dcm" "$stage/files/-t"
completes "<-t><-v><-x><-y>" -
completes "<-t>" -t
completes "<0><1><2><3><4><5>" -T ""
completes "<3>" -t 3
completes "<>" -x ""
completes "<>" -y 10 ""
completes "<first file.dcm><first.dcm>" -t 3 fi
completes "<first file.dcm>" -x 10 20 "first file"
completes "<>" nothing

# --- the installer for Windows: its script, and what stands in the key it writes ---

mkdir -p "$stage/windows/DICOM Tables" "$stage/windows/Icons"
for name in Tagwright.exe Tagwright-open.exe Tagwright.ini licence.txt readme.txt "DICOM Tables/version.txt" Icons/icon_dot.tga; do
  echo "$name" >"$stage/windows/$name"
done
makensis -V2 -WX -DFOLDER="$stage/windows" -DVERSION="$version_shown" -DNUMBER="$version_number" -DOUTPUT="$stage/tagwright-setup-test.exe" \
  "$root/packaging/windows/tagwright.nsi" >"$stage/log" 2>&1 || fail "script of the installer: $(tail -n 5 "$stage/log")"

finish "what the packages hold"
