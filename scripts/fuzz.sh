#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, sanitizers) and runs each one.
#
#   bash scripts/fuzz.sh [seconds] [target...]
#
# seconds: time per target (default 600).  Targets: all of fuzz/ by default.
# FUZZ_PARALLEL=N runs N targets at a time (default 1).  Each target starts
# from its committed seeds in fuzz/corpus/<target>/ and grows a working
# corpus in build-fuzz/corpus/<target>/; crashes land in
# build-fuzz/findings/<target>/.  Exit status 1 when any target found a
# problem.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-600}"
shift || true
build=build-fuzz
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  # Every target in fuzz/: one fuzz_<name>.cpp each.
  for f in fuzz/fuzz_*.cpp; do targets+=("$(basename "$f" .cpp)"); done
fi
parallel="${FUZZ_PARALLEL:-1}"

CC=clang CXX=clang++ cmake -S . -B "$build" -DBRELLIAN_BUILD_FUZZ=ON \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$(nproc)" --target "${targets[@]}"

# 'run_target()' - One target for the given time; its log goes to
# build-fuzz/findings/<target>.log and its last statistics line is printed.
run_target() {
  local t="$1" work="$build/corpus/$1" findings="$build/findings/$1"
  mkdir -p "$work" "$findings"
  local extra=()
  # The filter writes its spooler messages on standard error; keep them out
  # of the fuzzer's report.
  # libcups allocates row buffers from cupsBytesPerLine while it reads a
  # header, before the filter can check it.  Such blocks are never touched
  # by the filter, but the sanitizer's allocator clears them byte by byte;
  # above 2 GiB it returns no memory instead, and libcups refuses the page.
  local asan=detect_leaks=1:allocator_may_return_null=1
  if [ "$t" = fuzz_page_loop ]; then
    extra+=(-close_fd_mask=3 -malloc_limit_mb=16384)
    asan+=:max_allocation_size_mb=2048
  fi
  if ASAN_OPTIONS=$asan \
     "$build/fuzz/$t" "$work" "fuzz/corpus/$t" -max_total_time="$seconds" -timeout=60 \
       -rss_limit_mb=2048 -artifact_prefix="$findings/" -print_final_stats=1 "${extra[@]}" \
       >"$build/findings/$t.log" 2>&1; then
    local runs
    runs=$(grep -E '^stat::number_of_executed_units' "$build/findings/$t.log" | awk '{print $2}' || true)
    echo "$t: no finding, ${runs:-?} runs in ${seconds}s"
  else
    echo "$t: FINDING, see $build/findings/$t.log"
    tail -n 40 "$build/findings/$t.log"
    return 1
  fi
}

status=0
running=0
pids=()
for t in "${targets[@]}"; do
  run_target "$t" &
  pids+=($!)
  running=$((running + 1))
  if [ "$running" -ge "$parallel" ]; then
    wait "${pids[0]}" || status=1
    pids=("${pids[@]:1}")
    running=$((running - 1))
  fi
done
for p in "${pids[@]}"; do wait "$p" || status=1; done
exit $status
