#!/usr/bin/env bash
# Tests the Debian package in a folder: deb-test.sh FOLDER. It is looked into, and installed, used and purged below a
# temporary folder, which takes no rights and leaves the machine alone. Where the test may, as root and where the package is
# not installed, it is then installed for real: only so are its dependencies and its place below /usr put to the test.
. "$(dirname "${BASH_SOURCE[0]}")/support.sh"
installed=
tidy () { [ -z "$installed" ] || dpkg --purge tagwright >/dev/null 2>&1 || true; }

packages=("$1"/tagwright_*_amd64.deb)
package=$(readlink -f "${packages[0]}")
[ ${#packages[@]} -eq 1 ] && [ -f "$package" ] || { echo "no package, or several, in $1"; exit 1; }

# --- what it says and holds ---

lintian --allow-root --fail-on error,warning "$package" || fail "lintian"

number=$(sed -n 's/^#define PROGRAM_VERSION .*"\([0-9.]*\) rev-\([0-9]*\)".*/\1.\2/p' "$root/app/start_up.h")
[ "$(dpkg-deb -f "$package" Version)" = "$number-1" ] || fail "version $(dpkg-deb -f "$package" Version)"
depends=$(dpkg-deb -f "$package" Depends)
for library in libc6 libsdl2-2.0-0 libpangocairo-1.0-0 libpango-1.0-0 libcairo2 fonts-liberation; do
  [[ ", $depends," == *", $library"[\ ,]* ]] || fail "does not depend on $library: $depends"
done
dpkg-deb -e "$package" "$stage/control"
[ "$(ls "$stage/control" | tr '\n' ' ')" = "conffiles control md5sums " ] || fail "control files: $(ls "$stage/control")"

# The folders and the tables aside, which are compared with the sources.
files="./etc/tagwright/Tagwright.ini
./usr/bin/tagwright
./usr/bin/tagwright-open
./usr/lib/tagwright/tagwright_display.so
./usr/share/applications/tagwright.desktop
./usr/share/bash-completion/completions/tagwright
./usr/share/doc/tagwright/changelog.Debian.gz
./usr/share/doc/tagwright/changelog.gz
./usr/share/doc/tagwright/copyright
./usr/share/icons/hicolor/128x128/apps/tagwright.png
./usr/share/icons/hicolor/16x16/apps/tagwright.png
./usr/share/icons/hicolor/256x256/apps/tagwright.png
./usr/share/icons/hicolor/32x32/apps/tagwright.png
./usr/share/icons/hicolor/48x48/apps/tagwright.png
./usr/share/icons/hicolor/64x64/apps/tagwright.png
./usr/share/lintian/overrides/tagwright
./usr/share/man/man1/tagwright-open.1.gz
./usr/share/man/man1/tagwright.1.gz
./usr/share/tagwright/Icons/icon_dot.tga
./usr/share/tagwright/Icons/icon_type_0.tga
./usr/share/tagwright/Icons/icon_type_1.tga
./usr/share/tagwright/Icons/icon_type_1C.tga
./usr/share/tagwright/Icons/icon_type_2.tga
./usr/share/tagwright/Icons/icon_type_2C.tga
./usr/share/tagwright/Icons/icon_type_3.tga
./usr/share/tagwright/Tagwright.ini"
dpkg-deb -x "$package" "$stage/files"
found=$(cd "$stage/files" && find . ! -type d ! -path '*/DICOM Tables/*' | LC_ALL=C sort)
diff <(echo "$files") <(echo "$found") || fail "files of the package"
share=$stage/files/usr/share
diff -r "$root/DICOM Tables" "$share/tagwright/DICOM Tables" || fail "tables of the package"
[ "$(readlink "$share/tagwright/Tagwright.ini")" = /etc/tagwright/Tagwright.ini ] || fail "the configuration is no link"
[ "$(cat "$stage/control/conffiles")" = /etc/tagwright/Tagwright.ini ] || fail "conffiles: $(cat "$stage/control/conffiles")"
cmp "$root/install/Tagwright.ini" "$stage/files/etc/tagwright/Tagwright.ini" || fail "the configuration"

# What the desktop asks for is there.
desktop-file-validate "$share/applications/tagwright.desktop" || fail "desktop entry"
read -r command rest < <(sed -n 's/^Exec=//p' "$share/applications/tagwright.desktop")
[ -x "$stage/files/usr/bin/$command" ] && [ "$rest" = %F ] || fail "the desktop entry starts $command $rest"
for size in 16 32 48 64 128 256; do
  file "$share/icons/hicolor/${size}x$size/apps/tagwright.png" | grep -q "$size x $size" || fail "icon of $size"
done
for page in tagwright tagwright-open; do
  complaints=$(man --warnings -E UTF-8 -l "$share/man/man1/$page.1.gz" 2>&1 >"$stage/page") || fail "man page of $page"
  [ -z "$complaints" ] || fail "man page of $page: $complaints"
  grep -q "two DICOM files" "$stage/page" || fail "text of the man page of $page"
done

# --- installed below a folder ---

below=$stage/below
mkdir -p "$below/var/lib/dpkg/updates" "$below/var/lib/dpkg/info" "$below/var/lib/dpkg/triggers" "$below/var/log"
touch "$below/var/lib/dpkg/status" "$below/var/lib/dpkg/available"
dpkg_below () { fakeroot dpkg --root="$below" --log="$stage/dpkg.log" --force-not-root --force-depends "$@" >"$stage/log" 2>&1; }
dpkg_below --install "$package" || fail "installing below a folder: $(tail -n 5 "$stage/log")"
compare_as_new_user "$below/usr/bin/tagwright" "$below/usr/bin/../share/tagwright"
show_in_window "$below/usr/bin/tagwright-open"
dpkg_below --purge tagwright || fail "purging below a folder: $(tail -n 5 "$stage/log")"
left=$(cd "$below" && find . -mindepth 1 ! -path './var*')
[ -z "$left" ] || fail "left behind: $left"

# --- installed for real ---

if [ "$(id -u)" -ne 0 ] || dpkg-query -s tagwright >/dev/null 2>&1 || [ -e /usr/share/tagwright ] || [ -e /etc/tagwright ]; then
  echo "deb-test.sh: not root, or there is a tagwright already: installed below a folder only"
  finish "the Debian package"
  exit
fi
installed=yes
dpkg --install "$package" >"$stage/log" 2>&1 || fail "installing: $(tail -n 5 "$stage/log")"
compare_as_new_user tagwright /usr/bin/../share/tagwright
echo "skip = (0010,*)" >>/etc/tagwright/Tagwright.ini
compare () {
  status=0
  APPDATA="$stage/user" tagwright "$root/examples/ct_a.dcm" "$root/examples/ct_b.dcm" || status=$?
}
compare
[ $status -eq 12 ] || fail "the user's configuration replaces the skipped tags of the machine's: $status"
rm "$stage/user/Kestrelbay/Tagwright.ini"
compare
[ $status -eq 10 ] || fail "the machine's configuration is not read: $status"
dpkg --remove tagwright >"$stage/log" 2>&1 || fail "removing: $(tail -n 5 "$stage/log")"
grep -qF "skip = (0010,*)" /etc/tagwright/Tagwright.ini || fail "removing takes the edited configuration away"
dpkg --purge tagwright >"$stage/log" 2>&1 || fail "purging: $(tail -n 5 "$stage/log")"
installed=
for path in /etc/tagwright /usr/bin/tagwright /usr/bin/tagwright-open /usr/lib/tagwright /usr/share/tagwright \
  /usr/share/doc/tagwright /usr/share/applications/tagwright.desktop; do
  [ ! -e "$path" ] || fail "left behind: $path"
done
finish "the Debian package"
