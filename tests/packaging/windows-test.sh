#!/usr/bin/env bash
# Tests the two packages for Windows in a folder, under Wine: windows-test.sh FOLDER. Each is put where it belongs, used from
# another folder and taken away again, in a Windows and on a screen of the test's own.
if [ "${2:-}" != on-a-screen ]; then
  exec xvfb-run -a -s "-screen 0 1280x1024x24 -nolisten tcp" "${BASH_SOURCE[0]}" "$1" on-a-screen
fi
. "$(dirname "${BASH_SOURCE[0]}")/support.sh"

export WINEPREFIX=$stage/wine WINEDEBUG=-all LC_ALL=C.UTF-8 WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="
tidy () {
  set +e
  /usr/lib/wine/wineserver -k # Of this WINEPREFIX only.
  /usr/lib/wine/wineserver -w
}

setup=("$1"/Tagwright-*-setup.exe)
zip=("$1"/Tagwright-*-windows.zip)
[ ${#setup[@]} -eq 1 ] && [ -f "${setup[0]}" ] && [ ${#zip[@]} -eq 1 ] && [ -f "${zip[0]}" ] ||
  { echo "not one installer and one portable folder in $1"; exit 1; }
setup=$(readlink -f "${setup[0]}")
version=$(sed -n 's/^#define PROGRAM_VERSION .*"\(.*\)".*/\1/p' "$root/app/start_up.h")

wine wineboot -i >"$stage/log" 2>&1 || fail "Wine: $(tail -n 5 "$stage/log")"
/usr/lib/wine/wineserver -w
drive=$WINEPREFIX/drive_c
home=$drive/users/$(id -un)
machine="$drive/Program Files/Kestrelbay/Tagwright"
own=$home/AppData/Local/Programs/Tagwright
app_paths='Software\Microsoft\Windows\CurrentVersion\App Paths\Tagwright.exe'
uninstall='Software\Microsoft\Windows\CurrentVersion\Uninstall\Tagwright'
open_with='Software\Classes\Applications\Tagwright.exe\shell\open\command'

# --- what is looked at -----------------------------------------------------

value () { # key, value; "" is the default
  local words=(/v "$2")
  [ -n "$2" ] || words=(/ve)
  wine reg query "$1" "${words[@]}" /reg:64 2>/dev/null | tr -d '\r' | sed -n 's/^.* REG_[A-Z]* *//p'
}

is () { # what, expected, found
  [ "$2" = "$3" ] || fail "$1: $3 instead of $2"
}

files_of_windows () { (cd "$drive" && find . ! -path './users/*/Temp/*' ! -path './windows/temp/*' | LC_ALL=C sort); }

registry_has () { # text
  wine regedit /E "$stage/registry" >/dev/null 2>&1
  iconv -f UTF-16 -t UTF-8 "$stage/registry" 2>/dev/null | grep -i "$1"
}

end_of_all () { timeout 120 /usr/lib/wine/wineserver -w || fail "a program does not end"; }

# Compares the examples from another folder, as a user who has no tables yet. Those that are copied come from the folder.
compare_from () { # program, Windows name of its folder, differences
  local status=0 trace
  rm -rf "$home/AppData/Roaming/Kestrelbay" "$drive/Temp"
  mkdir -p "$stage/elsewhere"
  trace=$(cd "$stage/elsewhere" && wine "$1" -t 1 "$root/examples/ct_a.dcm" "$root/examples/ct_b.dcm" | tr -d '\r') || status=$?
  is "differences" "$3" $status
  grep -qF "copying all files from: $2\\DICOM Tables\\" <<<"$trace" ||
    fail "tables come from elsewhere than $2: $(grep -F Path <<<"$trace" | head)"
  diff -r "$root/DICOM Tables" "$home/AppData/Roaming/Kestrelbay/DICOM Tables" || fail "the user's tables"
  ! grep -F WARNING <<<"$trace" || fail "a new user is warned"
}

# Starts what the system starts for a file that is opened, and closes its window.
open_in_window () { # words...
  local window i
  rm -rf "$drive/Temp"
  wine "$@" &
  window=$(timeout 90 xdotool search --sync --onlyvisible --name "^Kestrelbay.s Tagwright " | tail -n 1)
  [ -n "$window" ] || fail "no window of $1"
  for i in $(seq 100); do
    grep -q "^Found 12 differences" "$drive"/Temp/Tagwright_*.dat 2>/dev/null && break
    sleep 0.2
  done
  grep -q "^Found 12 differences" "$drive"/Temp/Tagwright_*.dat || fail "$1 compares nothing in its window"
}

folder_is_whole () { # folder
  diff -r "$root/DICOM Tables" "$1/DICOM Tables" || fail "tables in $1"
  diff <(cd "$root/Icons" && ls icon_*) <(ls "$1/Icons") || fail "icons in $1"
  diff <(tr -d '\r' <"$1/Tagwright.ini") "$root/install/Tagwright.ini" || fail "configuration in $1"
  diff <(tr -d '\r' <"$1/licence.txt") "$root/LICENSE" || fail "licence in $1"
  [ -s "$1/readme.txt" ] || fail "readme in $1"
}

run_setup () { # status, words...
  local expected=$1 status=0
  shift
  wine "$setup" "$@" || status=$?
  is "status of the installer with $*" "$expected" $status
}

run_uninstall () { # folder
  wine "$1/Uninstall.exe" /S || fail "the uninstaller fails"
  end_of_all
}

# --- the program's resources -----------------------------------------------

unzip -q "${zip[0]}" -d "$stage/unpacked"
folders=("$stage"/unpacked/*)
portable="$stage/portable with blanks"
mv "${folders[0]}" "$portable"
for name in Tagwright.exe Tagwright-open.exe; do
  python3 "$root/tests/packaging/exe-resources.py" "$portable/$name" "$version" "$root/Icons/tagwright.ico" ||
    fail "resources of $name"
done

# --- the portable folder ---------------------------------------------------

before=$(files_of_windows)
folder_is_whole "$portable"
compare_from "$portable/Tagwright.exe" "Z:${portable//\//\\}" 12
open_in_window "$portable/Tagwright-open.exe" "$root/examples/ct_a.dcm" "$root/examples/ct_b.dcm"
/usr/lib/wine/wineserver -k
end_of_all
rm -rf "$home/AppData/Roaming/Kestrelbay" "$drive/Temp"
is "files of the portable folder in Windows" "$before" "$(files_of_windows)"
! registry_has tagwright || fail "the portable folder's traces in the registry"

# --- the installer, for all users ------------------------------------------

run_setup 0 /S
folder_is_whole "$machine"
[ ! -e "$machine/in-place.txt" ] || fail "the program doesn't ask the registry"
is "App Paths" 'C:\Program Files\Kestrelbay\Tagwright' "$(value "HKLM\\$app_paths" Path)"
is "App Paths" 'C:\Program Files\Kestrelbay\Tagwright\Tagwright.exe' "$(value "HKLM\\$app_paths" "")"
is "name among the programs" "Tagwright $version" "$(value "HKLM\\$uninstall" DisplayName)"
is "version among the programs" "$version" "$(value "HKLM\\$uninstall" DisplayVersion)"
is "uninstaller" '"C:\Program Files\Kestrelbay\Tagwright\Uninstall.exe"' "$(value "HKLM\\$uninstall" UninstallString)"
is "Open with" '"C:\Program Files\Kestrelbay\Tagwright\Tagwright-open.exe" "%1"' "$(value "HKLM\\$open_with" "")"
[ -f "$drive/ProgramData/Microsoft/Windows/Start Menu/Programs/Tagwright.lnk" ] || fail "no entry in the Start menu"
compare_from "$machine/Tagwright.exe" 'C:\Program Files\Kestrelbay\Tagwright' 12

# A program that runs is not replaced, nor taken away.
open_in_window "$machine/Tagwright-open.exe" "$root/examples/ct_a.dcm" "$root/examples/ct_b.dcm"
run_setup 2 /S
wine "$machine/Uninstall.exe" /S || true
sleep 5
folder_is_whole "$machine"
/usr/lib/wine/wineserver -k
end_of_all

# A newer version takes the place of an older one: what that had alone goes, an edited configuration stays.
echo old >"$machine/DICOM Tables/DICOM_Module_Old.txt"
echo old >"$machine/Icons/old.tga"
echo "skip = (0010,*)" >>"$machine/Tagwright.ini"
run_setup 0 /S
[ ! -e "$machine/DICOM Tables/DICOM_Module_Old.txt" ] && [ ! -e "$machine/Icons/old.tga" ] || fail "stale files stay"
compare_from "$machine/Tagwright.exe" 'C:\Program Files\Kestrelbay\Tagwright' 10
echo "# of an older version" | tee "$machine/Tagwright.default.ini" >"$machine/Tagwright.ini"
run_setup 0 /S
folder_is_whole "$machine"

run_uninstall "$machine"
[ -d "$home/AppData/Roaming/Kestrelbay/DICOM Tables" ] || fail "the user's own tables are gone"
rm -rf "$home/AppData/Roaming/Kestrelbay" "$drive/Temp"
diff <(echo "$before") <(files_of_windows) || fail "files are left behind"
! registry_has tagwright || fail "keys are left behind"

# --- the installer, for one user -------------------------------------------

run_setup 0 /S /CURRENTUSER
folder_is_whole "$own"
is "App Paths of the user" "C:\\users\\$(id -un)\\AppData\\Local\\Programs\\Tagwright" "$(value "HKCU\\$app_paths" Path)"
is "App Paths of the machine" "" "$(value "HKLM\\$app_paths" Path)"
compare_from "$own/Tagwright.exe" "C:\\users\\$(id -un)\\AppData\\Local\\Programs\\Tagwright" 12
run_uninstall "$own"
rm -rf "$home/AppData/Roaming/Kestrelbay" "$drive/Temp"
rmdir "$home/AppData/Local/Programs" 2>/dev/null || true # The system's own.
diff <(echo "$before") <(files_of_windows) || fail "files of one user are left behind"
! registry_has tagwright || fail "keys of one user are left behind"

finish "the installer and the portable folder for Windows"
