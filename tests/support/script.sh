# How a test that is a script begins and ends; it sources this. root is the folder of the sources, stage one that goes away.
set -eu

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
stage=$(mktemp -d)
failures=0

tidy () { :; } # What else a test leaves behind; it may define this anew.
trap 'tidy; rm -rf "$stage"' EXIT

fail () { # what is wrong
  echo "FAILED: $*"
  failures=$((failures + 1))
}

stand_in () { # path below stage; the script comes from standard input
  { echo '#!/bin/bash'; cat; } >"$stage/$1"
  chmod +x "$stage/$1"
}

finish () { # name
  [ $failures -eq 0 ] || exit 1
  echo "$1 does as it should"
}
