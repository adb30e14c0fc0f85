#!/usr/bin/env bash
# Makes the packages of the commit that is checked out, and tests them: scripts/release.sh. They and their checksums stand in
# dist/ then, for Windows an installer and a portable folder, for Linux a Debian package and a portable folder.
# scripts/release.sh --check makes them twice, in different places and without a compiler's cache the second time, and fails
# unless the bytes are the same. See docs/releasing.md.
set -eu

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
cd "$root"
check=
case "$#:${1:-}" in
  0:) ;;
  1:--check) check=yes ;;
  *) echo "usage: scripts/release.sh [--check]" >&2; exit 2 ;;
esac

fail () {
  echo "release.sh: $*" >&2
  exit 1
}

# Runs a command silently; what it said is shown when it fails.
quietly () { # name, command...
  local name=$1 start=$SECONDS
  shift
  if ! "$@" >"$work/log" 2>&1; then
    tail -n 50 "$work/log" >&2
    fail "$name failed"
  fi
  printf '%-44s %d s\n' "$name" $((SECONDS - start))
}

[ -z "$(git status --porcelain)" ] || fail "there are changes that no commit has: $(git status --porcelain | head -n 5)"
scripts/install-packages.sh build release

# What would make two builds differ: time, place, rights of files, order of names. The time is that of the commit.
umask 022
export LC_ALL=C.UTF-8 TZ=UTC
commit=$(git rev-parse HEAD)
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct "$commit")
export SOURCE_DATE_EPOCH
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# --- building ---

configure_and_build () { # source, preset
  (cd "$1" && cmake --preset "$2" && cmake --build --preset "$2" --parallel "$(nproc)")
}

# What a package of one folder holds, all of the same time.
stage () { # source, preset, folder
  cmake --install "$1/build/$2" --component folder --strip --prefix "$3" &&
    find "$3" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
}

pack_tar () { # folder, file
  tar --create --directory "$(dirname "$1")" --sort=name --owner=0 --group=0 --numeric-owner --mtime="@$SOURCE_DATE_EPOCH" \
    --format=ustar "$(basename "$1")" | gzip -9n >"$2"
}

pack_zip () { # folder, file
  (cd "$(dirname "$1")" && find "$(basename "$1")" | LC_ALL=C sort | zip -X -9 -q -@ "$2")
}

pack_deb () { # build folder, folder of the result
  mkdir -p "$1/deb" && (cd "$1" && cpack -B "$1/deb") && cp "$1"/deb/*.deb "$2/"
}

pack_installer () { # staged folder, source, file
  makensis -V2 -DFOLDER="$1" -DVERSION="$version_shown" -DNUMBER="$version_number" -DOUTPUT="$3" \
    "$2/packaging/windows/tagwright.nsi"
}

# Makes everything from the commit, in a folder of its own.
make_all () { # folder
  local source=$1/source output=$1/dist
  mkdir -p "$source" "$output"
  git archive --format=tar "$commit" | tar --extract --directory "$source"
  quietly "Linux: build" configure_and_build "$source" release
  quietly "Windows: build" configure_and_build "$source" release-windows
  . "$source/build/release/packaging/version.sh"
  local linux=$1/tagwright-$version_name-linux-x86_64 windows=$1/Tagwright-$version_name
  quietly "Linux: folder" stage "$source" release "$linux"
  quietly "Windows: folder" stage "$source" release-windows "$windows"
  quietly "Linux: portable folder" pack_tar "$linux" "$output/tagwright-$version_name-linux-x86_64.tar.gz"
  quietly "Linux: Debian package" pack_deb "$source/build/release" "$output"
  quietly "Windows: installer" pack_installer "$windows" "$source" "$output/Tagwright-$version_name-setup.exe"
  cp "$source/packaging/windows/in-place.txt" "$windows/"
  touch -d "@$SOURCE_DATE_EPOCH" "$windows" "$windows/in-place.txt"
  quietly "Windows: portable folder" pack_zip "$windows" "$output/Tagwright-$version_name-windows.zip"
  (cd "$output" && sha256sum -- * >SHA256SUMS)
}

make_all "$work/first"
if [ -n "$check" ]; then
  export CCACHE_DISABLE=1
  make_all "$work/second, in another place"
  diff "$work/first/dist/SHA256SUMS" "$work/second, in another place/dist/SHA256SUMS" ||
    fail "two builds of one commit differ"
  echo "two builds of one commit are the same"
fi

# --- using what was made ---

for artefact in deb folder windows; do
  quietly "test: $artefact" tests/packaging/$artefact-test.sh "$work/first/dist"
done

rm -rf dist
cp -r "$work/first/dist" dist
ls -l dist
cat dist/SHA256SUMS
