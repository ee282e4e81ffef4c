#!/usr/bin/env bash
# Instruction counts of whole jobs: the filter and the I/O floor on each job,
# counted by valgrind's callgrind (every instruction of the process, the
# dynamic loader and the libraries included).  Unlike times, the counts do
# not depend on the load of the machine; they do not see the cost of memory
# and of the kernel, which the times of bench/run-jobs.sh do.
#
# Usage: bench/count-jobs.sh [-b BUILD_DIR] [-f FILTER] [JOB ...]
#   BUILD_DIR  the benchmark build in which bench/run-jobs.sh has made the
#              jobs and their plans (default build-bench)
#   FILTER     the filter program to count (default BUILD_DIR/rastertobrellian),
#              for instance a copy of an earlier build's, to compare the two
#   JOB        jobs to count (default: the panel-sized ones)
. "$(dirname "$0")/lib.sh"
build=build-bench
filter=""
bench_options "b=build f=filter" "$@"
[ -n "$filter" ] || filter="$build/rastertobrellian"
jobs=("${bench_args[@]}")
[ ${#jobs[@]} -gt 0 ] || jobs=(card600 card600z panel600 panel600z panel300 panel300z card300)
work="$build/bench/jobs"
options="frontRibbon=ColorK backRibbon=ColorK frontResin=Page backResin=Page frontUV=Page backUV=Page frontPO=Page backPO=Page"

# 'count KIND JOB' - Instructions of one run, in millions.
count() {
  local kind=$1 job=$2 ppd="$PWD/$build/ppd/br1060.ppd" log="$work/callgrind.log"
  case $job in *300*) ppd="$PWD/$build/ppd/br1030.ppd" ;; esac
  if [ "$kind" = filter ]; then
    PPD=$ppd valgrind --tool=callgrind --callgrind-out-file=/dev/null --log-file="$log" \
      "$filter" 1 bench bench 1 "$options" <"$work/$job.ras" >/dev/null 2>&1
  else
    BRELLIAN_FLOOR_PLAN="$work/$job.plan" valgrind --tool=callgrind --callgrind-out-file=/dev/null \
      --log-file="$log" "$build/bench/brellian-iofloor" 1 bench bench 1 "$options" <"$work/$job.ras" \
      >/dev/null 2>&1
  fi
  awk '/Collected :/ {printf "%.1f", $4 / 1e6}' "$log"
}

printf '%-12s %12s %12s %7s\n' job "filter Mi" "floor Mi" ratio
for job in "${jobs[@]}"; do
  [ -s "$work/$job.plan" ] || { echo "$job: no job or plan; run bench/run-jobs.sh first" >&2; exit 1; }
  f=$(count filter "$job")
  b=$(count iofloor "$job")
  awk -v j="$job" -v f="$f" -v b="$b" 'BEGIN {printf "%-12s %12.1f %12.1f %7.3f\n", j, f, b, f / b}'
done
