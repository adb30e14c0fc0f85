#!/usr/bin/env bash
# Measures speed and memory of the optimised program, as ratios against a peer in the same run. Not part of the tests.
# usage: ./bench.sh [folder for the files, 5 GB; default build/bench]            the program by itself
#        ./bench.sh compare [folder [argument of bench/compare.py...]]          against cmp and other programs
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
"$root/scripts/install-packages.sh" build bench
build=$root/build/bench-build
log=$root/build/bench.log
mkdir -p "$root/build"
what=all
[ "${1:-}" != compare ] || { what=compare; shift; }
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTAGWRIGHT_TESTS=OFF >"$log" 2>&1 &&
  cmake --build "$build" --target tagwright make_pairs assemble view_bench >>"$log" 2>&1 || { cat "$log"; exit 1; }
files=${1:-$root/build/bench}
mkdir -p "$files" "$build/user/Kestrelbay"
export APPDATA=$build/user          # The first of the runs copies the definition tables there.
echo "scratch = $build/logs/" >"$build/user/Kestrelbay/Tagwright.ini"
rm -rf "$build/logs"

if [ $what = compare ]; then
  [ $# -eq 0 ] || shift
  exec python3 "$root/bench/compare.py" "$build/tagwright" "$build/bench/make_pairs" "$files" "$@"
fi

pair() {    # pair KIND NUMBER: writes the pair once
  [ -f "$files/$1_$2_b.dcm" ] || "$build/bench/make_pairs" "$files" "$1" "$2"
}

# best COMMAND...: the shortest time of five runs in seconds, and the peak memory in KiB of the last, as "SECONDS KIB"
best() {
  local shortest=999999 line status
  for _ in 1 2 3 4 5; do
    status=0
    line=$(/usr/bin/time -f '%e %M' "$@" 2>&1 >/dev/null) || status=$?
    line=$(printf '%s\n' "$line" | tail -n 1)
    shortest=$(awk -v a="$shortest" -v b="${line% *}" 'BEGIN { print (b < a) ? b : a }')
  done
  echo "$shortest ${line#* }"
}

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { if (b < 0.01) b = 0.01; printf "%.2f", a / b }'; }

echo "== a pair of 512 MB with one pixel value: against cmp in the same run"
pixel=536870912
pair pixel $pixel
a=$files/pixel_${pixel}_a.dcm b=$files/pixel_${pixel}_b.dcm
cat "$a" "$b" >/dev/null
read -r own_time own_memory < <(best "$build/tagwright" "$a" "$b")
read -r cmp_time cmp_memory < <(best cmp "$a" "$b")
sum=$(( ($(stat -c %s "$a") + $(stat -c %s "$b")) / 1024 ))
echo "tagwright  ${own_time} s  ${own_memory} KiB"
echo "cmp        ${cmp_time} s  ${cmp_memory} KiB"
echo "time ratio to cmp:                    $(ratio "$own_time" "$cmp_time")   (bound 2.00)"
echo "peak memory ratio to the two files:   $(ratio "$own_memory" "$sum")   (bound 1.20)"

echo
echo "== elements in nested items: time and memory against the pair of a quarter of the elements"
previous_time='' previous_memory=''
for count in 120000 480000 1920000; do
  pair nested $count
  read -r own_time own_memory < <(best "$build/tagwright" "$files/nested_${count}_a.dcm" "$files/nested_${count}_b.dcm")
  line="$count elements a file:  ${own_time} s  ${own_memory} KiB"
  if [ -n "$previous_time" ]; then
    line="$line   time x $(ratio "$own_time" "$previous_time")  memory x $(ratio "$own_memory" "$previous_memory")  (linear: 4.00)"
  fi
  echo "$line"
  previous_time=$own_time previous_memory=$own_memory
done

echo
echo "== assembling the definition of each modality (bound 50 ms; the slowest five)"
"$build/bench/assemble" "$root/DICOM Tables/" | head -n 5

echo
echo "== a window of 1600 x 1000 with 200,000 rows (bounds 16 ms for a repaint, 50 ms for folding)"
"$build/view_bench" "$root/"
