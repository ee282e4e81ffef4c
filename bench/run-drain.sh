#!/usr/bin/env bash
# Pages after the card is complete: jobs of 40 compressed pages just under
# the page cap (the first prints the card, the other 39 are only read) and
# the first page alone, timed through the filter, optionally beside another
# filter binary (an earlier build) whose output must be the same.
#
# Usage: bench/run-drain.sh [-b BUILD_DIR] [-n RUNS] [OTHER_FILTER]
#   BUILD_DIR  a build configured with -DBRELLIAN_BUILD_BENCH=ON (default
#              build-bench, configured in Release mode and built here)
#   RUNS       runs per job and filter (default 3); the median is shown
# Wall times widen on a loaded machine; the filter's CPU time much less.
# Nothing here fails on a time.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build-bench
runs=3
while getopts "b:n:" opt; do
  case $opt in
    b) build=$OPTARG ;;
    n) runs=$OPTARG ;;
    *) sed -n '7,12p' "$0"; exit 2 ;;
  esac
done
shift $((OPTIND - 1))
if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S . -B "$build" -DBRELLIAN_BUILD_BENCH=ON -DCMAKE_BUILD_TYPE=Release \
    -DBRELLIAN_SYSROOT="$PWD/$build/sysroot" >/dev/null
fi
cmake --build "$build" -j2 --target rastertobrellian brellian-drainbench >/dev/null
"$build/bench/brellian-drainbench" -n "$runs" "$PWD/$build/rastertobrellian" "$@"
