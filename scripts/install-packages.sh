#!/usr/bin/env bash
# Installs the Debian 12 packages of the groups named, those that are missing: build, test, bench, fuzz, coverage, release,
# format. Says nothing when all of them are there.
set -eu

usage () {
  echo "usage: install-packages.sh GROUP...   (groups: build test bench fuzz coverage release format)" >&2
  exit 2
}

fail () {
  echo "install-packages.sh: $*" >&2
  exit 1
}

packages_of () {
  case "$1" in
    build) echo "g++ cmake ninja-build pkg-config libsdl2-dev libpango1.0-dev fonts-liberation" ;;
    test)
      echo "googletest g++-mingw-w64-x86-64-posix wine64 wine python3 python3-pydicom dcmtk procps xvfb xauth"
      echo "imagemagick xdotool x11-apps x11-utils libx11-dev man-db groff desktop-file-utils nsis"
      ;;
    bench) echo "hyperfine time diffutils python3 dcmtk libgdcm-tools" ;;
    fuzz) echo "clang-14 libclang-rt-14-dev python3 python3-pydicom" ;;
    coverage) echo "clang-14 libclang-rt-14-dev llvm-14 python3" ;;
    release)
      echo "g++-mingw-w64-x86-64-posix nsis zip unzip gzip tar git file dpkg-dev fakeroot lintian man-db desktop-file-utils wine64 wine"
      echo "xvfb xauth xdotool python3 binutils"
      ;;
    format) echo "clang-format" ;;
    *) usage ;;
  esac
}

is_installed () {
  case "$(dpkg-query -W -f '${db:Status-Abbrev}' "$1" 2>/dev/null || true)" in
    ?i*) return 0 ;;
    *) return 1 ;;
  esac
}

[ $# -gt 0 ] || usage
wanted=
for group in "$@"; do
  wanted="$wanted $(packages_of "$group")"
done

command -v dpkg-query >/dev/null || fail "this needs Debian's package tools; install by other means:$wanted"
missing=()
for package in $wanted; do
  is_installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "install-packages.sh: installing ${missing[*]}" >&2
as_root=(env DEBIAN_FRONTEND=noninteractive)
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || fail "needs root or sudo to install: ${missing[*]}"
  as_root=(sudo "${as_root[@]}")
fi

# A registry that can't be reached need not hurt when the lists of an earlier update still serve, so only a failing
# installation counts.
output=$(mktemp)
trap 'rm -f "$output"' EXIT
"${as_root[@]}" apt-get update -o APT::Update::Error-Mode=any >"$output" 2>&1 ||
  echo "install-packages.sh: the package lists could not be brought up to date" >&2
if ! "${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}" >>"$output" 2>&1; then
  tail -n 20 "$output" >&2
  fail "could not install ${missing[*]} (is the package registry reachable?)"
fi
