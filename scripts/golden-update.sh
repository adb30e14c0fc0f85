#!/usr/bin/env bash
# Draws the golden pictures of tests/golden/, and README's screenshots, anew with the sources as they are, and lists those that
# changed. Look at each of them before it is committed: from then on it is what the tests hold the program to.
set -eu

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
cd "$root"
scripts/install-packages.sh build test

folders=$(grep -l '\bPicture_Matches (' tests/*/*_test.cpp | cut -d / -f 2 | sort -u)
if [ -z "$folders" ]; then
  echo "golden-update.sh: no test compares pictures" >&2
  exit 1
fi

cmake --preset native >/dev/null
targets=()
for folder in $folders; do targets+=("${folder}_test"); done
cmake --build build/native --target "${targets[@]}" | grep -E 'FAILED|error' || [ "${PIPESTATUS[0]}" -eq 0 ]

# A test may fail for other reasons; its pictures are drawn all the same.
for target in "${targets[@]}"; do
  TAGWRIGHT_GOLDEN_UPDATE=1 "build/native/tests/$target" --gtest_brief=1 ||
    echo "golden-update.sh: $target has failures" >&2
done

changed=$(git status --short --untracked-files=all tests/golden docs/screenshot-*.png)
echo "${changed:-no picture changed}"
