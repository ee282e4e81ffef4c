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
. "$(dirname "$0")/lib.sh"
build=build-bench
runs=3
bench_options "b=build n=runs" "$@"
bench_configure "$build"
bench_build "$build" rastertobrellian brellian-drainbench
"$build/bench/brellian-drainbench" -n "$runs" "$PWD/$build/rastertobrellian" "${bench_args[@]}"
