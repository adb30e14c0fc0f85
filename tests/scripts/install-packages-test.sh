#!/usr/bin/env bash
# Runs scripts/install-packages.sh against a machine that is played by small stand-ins for Debian's tools.
. "$(dirname "${BASH_SOURCE[0]}")/../support/script.sh"
export STAGE=$stage

# A machine with the tools that the script uses, and no others.
machine () { # user id, installed packages...
  rm -rf "$stage/bin"
  mkdir "$stage/bin"
  for tool in bash env cat rm mktemp tail; do ln -s "$(command -v $tool)" "$stage/bin/$tool"; done
  user=$1
  shift
  echo " $* " >"$stage/installed"
  : >"$stage/calls"
  echo "echo $user" | stand_in bin/id
  stand_in bin/dpkg-query <<'END'
if [[ "$(cat "$STAGE/installed")" == *" ${!#} "* ]]; then echo -n 'ii '; else exit 1; fi
END
  stand_in bin/apt-get <<'END'
echo "apt-get $DEBIAN_FRONTEND $*" >>"$STAGE/calls"
END
}

run () { # arguments...
  status=0
  output=$(PATH="$stage/bin" "$root/scripts/install-packages.sh" "$@" 2>&1) || status=$?
  calls=$(cat "$stage/calls")
}

window="pkg-config libsdl2-dev libpango1.0-dev fonts-liberation"
machine 0 g++ cmake ninja-build $window
run build
[ $status -eq 0 ] && [ -z "$output$calls" ] || fail "nothing is missing, yet: $status ($output) ($calls)"

machine 0 g++ ninja-build $window
run build bench
[ $status -eq 0 ] || fail "installing as root: $status ($output)"
case "$calls" in
  "apt-get noninteractive update"*"apt-get noninteractive install -y --no-install-recommends cmake hyperfine time diffutils python3 dcmtk libgdcm-tools") ;;
  *) fail "calls as root: $calls" ;;
esac
case "$output" in *"installing cmake hyperfine time diffutils"*) ;; *) fail "does not say what it does: $output" ;; esac

machine 1000 g++ cmake $window
run build
[ $status -eq 1 ] && [ -z "$calls" ] || fail "neither root nor sudo: $status ($calls)"
case "$output" in *"needs root or sudo to install: ninja-build"*) ;; *) fail "message without sudo: $output" ;; esac

machine 1000 g++ cmake $window
stand_in bin/sudo <<'END'
echo sudo >>"$STAGE/calls"
exec "$@"
END
run build
[ $status -eq 0 ] || fail "installing through sudo: $status ($output)"
case "$calls" in *sudo*"install -y --no-install-recommends ninja-build") ;; *) fail "calls through sudo: $calls" ;; esac

machine 0 g++ cmake $window
stand_in bin/apt-get <<'END'
echo "E: Could not resolve host"
exit 100
END
run build
[ $status -eq 1 ] || fail "unreachable registry: status $status"
case "$output" in
  *"Could not resolve host"*"could not install ninja-build (is the package registry reachable?)") ;;
  *) fail "message without registry: $output" ;;
esac

machine 0 g++ cmake ninja-build
run build
case "$calls" in *"install -y --no-install-recommends $window") ;; *) fail "what windows need: $calls" ;; esac

machine 0
rm "$stage/bin/dpkg-query"
run build
[ $status -eq 1 ] || fail "no Debian: status $status"

machine 0
run
[ $status -eq 2 ] || fail "no group: status $status"
run nonsense
[ $status -eq 2 ] || fail "unknown group: status $status"

finish install-packages.sh
