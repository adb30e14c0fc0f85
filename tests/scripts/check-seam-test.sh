#!/usr/bin/env bash
# Plants violations in a copy of the sources and expects scripts/check-seam.sh to name each of them, and nothing else.
. "$(dirname "${BASH_SOURCE[0]}")/../support/script.sh"

copy="$stage/copy with blanks"
mkdir -p "$copy/scripts" "$copy/util" "$copy/compare" "$copy/app" "$copy/tables" "$copy/tests/util" "$copy/tests/platform" \
  "$copy/platform/win32" "$copy/build" "$copy/docs"
cp "$root/scripts/check-seam.sh" "$copy/scripts/"

# Expects the check to pass while the file holds the text.
allows () { # file text
  printf '%s\n' "$2" >"$copy/$1"
  if ! output=$(cd / && "$copy/scripts/check-seam.sh" 2>&1); then
    fail "refused in $1: $2 ($output)"
  elif [ -n "$output" ]; then
    fail "not quiet about $1: $output"
  fi
  rm "$copy/$1"
}

# Expects the check to fail and to name the second line of the file.
refuses () { # file text
  printf '// first line\n%s\n' "$2" >"$copy/$1"
  if output=$(cd / && "$copy/scripts/check-seam.sh" 2>&1); then
    fail "let through in $1: $2"
  elif [ "${output#"$1:2:"}" = "$output" ] || [ "$(printf '%s\n' "$output" | wc -l)" -ne 1 ]; then
    fail "named wrongly in $1: $2 ($output)"
  fi
  rm "$copy/$1"
}

for header in windows.h winsock2.h shellapi.h unistd.h sys/stat.h sys/mman.h fcntl.h pthread.h dirent.h strings.h dlfcn.h \
  SDL2/SDL.h cairo.h cairo/cairo.h pango/pangocairo.h X11/Xlib.h io.h direct.h conio.h; do
  refuses util/planted.cpp "#include <$header>"
  allows platform/planted.h "#include <$header>"
  allows tests/platform/planted.cpp "#include <$header>"
done
refuses tests/util/planted.cpp '#include <unistd.h>'
refuses util/planted.h '  #  include   <windows.h>'
refuses util/planted.cpp '/* a comment */ #include <windows.h>'
refuses util/planted.cpp '#include "windows.h"'
refuses util/planted.cpp '#include SOME_HEADER'
refuses util/planted.cpp '#include <gtest/gtest.h>'
allows tests/util/planted.cpp '#include <gtest/gtest.h>'
allows util/planted.cpp '#include <stdio.h>'
allows util/planted.cpp '#include <string>'
allows build/planted.cpp '#include <windows.h>'

for macro in _WIN32 _WIN64 WIN32 __linux__ __linux __APPLE__ __unix__ _MSC_VER __MINGW32__ __MINGW64__ __CYGWIN__ \
  _POSIX_C_SOURCE _GNU_SOURCE; do
  refuses util/planted.cpp "#ifdef $macro"
  refuses tests/util/planted.cpp "#if defined($macro)"
  allows platform/planted.cpp "#ifdef $macro"
  allows tests/platform/planted.cpp "#ifdef $macro"
done
allows util/planted.cpp '// Windows and Linux, Win32s and linux: words are no macros'
allows util/CMakeLists.txt 'if (WIN32)'

refuses util/planted.cpp '#include "compare/comparison_run.h"'
refuses tables/planted.h '#include "compare/comparison_run.h"'
refuses compare/planted.cpp '#include "app/start_up.h"'
refuses compare/planted.cpp '#include "tools/icon.h"'
refuses platform/win32/planted.cpp '#include "util/text.h"'
refuses util/planted.cpp '#include "tests/support/stream.h"'
refuses util/planted.cpp '#include "text.h"'
refuses util/planted.cpp '#include "platform/win32/private.h"'
allows platform/win32/planted.cpp '#include "platform/win32/private.h"'
allows app/planted.cpp '#include "compare/comparison_run.h"'
allows tables/planted.cpp '#include "attribute/attribute.h"'
allows compare/planted.cpp '#include "util/text.h"'
allows tests/util/planted.cpp '#include "app/start_up.h"'

refuses util/planted.cpp '// as the specificatio''n says'
refuses platform/planted.cpp '// Specificatio''ns differ'
refuses docs/planted.md 'See Part'' 3.1 for it'
refuses util/planted.h '// see ../share''d/'
allows util/planted.cpp 'static const char *name = "Specificatio''n Sequence";'
allows docs/planted.md 'A Part 10 file, as PS3.5 7.1.2 has it'

finish check-seam.sh
