#!/usr/bin/env bash
# Draws the pictures of README and docs/window.md anew, docs/screenshot-*.png. It takes no display: a test draws the whole
# window in memory, and otherwise holds the program to these pictures.
set -eu

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
cd "$root"
scripts/install-packages.sh build test
cmake --preset native >/dev/null
cmake --build build/native --target app_test | grep -E 'FAILED|error' || [ "${PIPESTATUS[0]}" -eq 0 ]
TAGWRIGHT_GOLDEN_UPDATE=1 build/native/tests/app_test --gtest_brief=1 --gtest_filter='WindowPictures.Screenshot*'
ls -l docs/screenshot-*.png
