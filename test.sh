#!/usr/bin/env bash
# Builds and tests everything: ./test.sh. Or one configuration: ./test.sh native, sanitize or windows (under Wine, with a
# display of its own). Ends with a summary; the exit status is 0 when all is well.
set -eu

root=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
cd "$root"

presets="native sanitize windows"
if [ $# -gt 0 ]; then
  case "$#$1" in
    1native | 1sanitize | 1windows) presets=$1 ;;
    *) echo "usage: ./test.sh [native | sanitize | windows]" >&2; exit 2 ;;
  esac
fi
jobs=$(nproc)
summary=
failed=0

# --- steps ---

# Runs a command and notes how it went and how long it took. One that fails makes the whole run fail at its end; result
# tells the caller, who decides whether to go on.
result=
step () { # name, command...
  local name=$1 start=$SECONDS
  shift
  echo "=== $name"
  if "$@"; then result=passed; else result=FAILED failed=1; fi
  summary="$summary$(printf '%-20s %s, %d s' "$name" "$result" $((SECONDS - start)))"$'\n'
}

# A build says nothing but its errors.
build () { # preset
  mkdir -p "build/$1"
  if ! { cmake --preset "$1" && cmake --build --preset "$1" --parallel "$jobs"; } >"build/$1/build.log" 2>&1; then
    grep -E -A 8 'FAILED: |error: |CMake Error|undefined reference' "build/$1/build.log" | head -n 100
    echo "the whole of it: build/$1/build.log"
    return 1
  fi
}

run_tests () { # preset
  ctest --preset "$1" --parallel "$jobs"
}

# --- Wine ---

# Tests under Wine have a Windows of their own, and a display of their own, so that nothing appears on the user's.
display=
wine_start () {
  export WINEPREFIX=$root/build/wine WINEDEBUG=-all LC_ALL=C.UTF-8
  export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="
  mkdir -p "$WINEPREFIX"
  rm -f build/display
  mkfifo build/display
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3<>build/display >build/display.log 2>&1 &
  display=$!
  local number
  if ! read -r -t 30 number <>build/display; then
    cat build/display.log
    echo "no display for Wine"
    return 1
  fi
  export DISPLAY=:$number
  wine wineboot -i >build/wine.log 2>&1 || { cat build/wine.log; return 1; }
}

# What is gone already need not be stopped. The status of the run stays as it was.
wine_stop () {
  [ -n "$display" ] || return 0
  set +e
  /usr/lib/wine/wineserver -k # Of this WINEPREFIX only.
  kill "$display" 2>/dev/null
  wait "$display" 2>/dev/null
  display=
  rm -f build/display
}
trap wine_stop EXIT

# --- all of it ---

finish () {
  echo "=== summary"
  printf '%s' "$summary"
  if [ $failed -ne 0 ]; then
    echo "FAILED after $SECONDS s"
    exit 1
  fi
  echo "all passed in $SECONDS s"
  exit 0
}

export ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
mkdir -p build
step "packages" scripts/install-packages.sh build test
[ $result = passed ] || finish
step "seam" scripts/check-seam.sh
for preset in $presets; do
  step "$preset: build" build "$preset"
  [ $result = passed ] || continue
  if [ "$preset" = windows ]; then
    step "windows: Wine" wine_start
    [ $result = passed ] || continue
  fi
  step "$preset: tests" run_tests "$preset"
done
finish
