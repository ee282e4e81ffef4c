#!/usr/bin/env bash
# Whole-job benchmark of the filter: each standard job runs as a whole
# process with input and output through pipes, alternating with a baseline
# (the I/O floor, the null filter, the filter built on the plain reference
# stages, and ghostscript rendering the same card pages), and the medians,
# the median of the per-pair ratios and the peak resident set sizes go into
# a table.
#
# Usage: bench/run-jobs.sh [-b BUILD_DIR] [-n RUNS] [-o TABLE_FILE] [-j "JOB ..."] [-f]
#   BUILD_DIR  a build configured with -DBRELLIAN_BUILD_BENCH=ON, built in
#              Release mode (default: build-bench, configured and built here)
#   RUNS       pairs per comparison (default 9)
#   TABLE_FILE where the table is written as well (default BUILD_DIR/bench/jobs.txt)
#   JOB ...    only these jobs (default: all)
#   -f         only the comparisons with the I/O floor
# Times are wall-clock seconds (median) and processor seconds, user plus
# system (minimum: on a loaded machine the least the job took is the
# steadiest figure); the ratios of alternating pairs vary much less than
# the times.  Nothing here fails on a time.
. "$(dirname "$0")/lib.sh"
build=build-bench
runs=9
table=""
only=""
flooronly=0
bench_options "b=build n=runs o=table j=only f=flooronly+" "$@"
bench_configure "$build"
bench_build "$build" rastertobrellian brellian-nullfilter brellian-iofloor brellian-reffilter \
  brellian-rasterwrite brellian-samplecard brellian_ppds
[ -n "$table" ] || table="$build/bench/jobs.txt"
work="$build/bench/jobs"
mkdir -p "$work"
rm -f "$work"/*.plan   # the output records are taken again from this filter
filter="$build/rastertobrellian"
reffilter="$build/bench/brellian-reffilter"
nullfilter="$build/bench/brellian-nullfilter"
iofloor="$build/bench/brellian-iofloor"
write="$build/tools/brellian-rasterwrite"
samplecard="$build/tools/brellian-samplecard"
pdf=docs/samples/sample-card.pdf

# One side is colour, black, UV and overlay pages; a duplex job has both.
options="frontRibbon=ColorK backRibbon=ColorK frontResin=Page backResin=Page frontUV=Page backUV=Page frontPO=Page backPO=Page"

# 'make_job NAME PAGES WIDTH HEIGHT DPI [writer options]' - A job of
# pattern pages (colour bars over a grey ramp, so the black panel diffuses).
make_job() {
  local name=$1 pages=$2 w=$3 h=$4 dpi=$5
  shift 5
  local args=()
  for ((i = 0; i < pages; ++i)); do args+=(pattern); done
  "$write" -W "$w" -H "$h" -r "$dpi" "$@" -o "$work/$name.ras" "${args[@]}"
}
make_job panel600 8 2072 1328 600 --duplex
make_job panel600z 8 2072 1328 600 --duplex -c
make_job cr80 8 2022 1276 600 --duplex
make_job cr80z 8 2022 1276 600 --duplex -c
make_job portrait600 8 1328 2072 600 --duplex
make_job page600 1 2072 1328 600
make_job panel300 8 1036 664 300 --duplex
make_job panel300z 8 1036 664 300 --duplex -c
make_job cr80at300 8 1011 638 300 --duplex
# The sample card with every panel kind on both sides: a card as it is
# usually printed, its black pages pure text and bar code.
"$samplecard" --all-panels "$work/card600.ras"
"$samplecard" --all-panels --compressed "$work/card600z.ras"
"$samplecard" --all-panels --dpi 300 "$work/card300.ras"
# The card document repeated to eight pages, for ghostscript.
gs_pages=("$pdf" "$pdf" "$pdf" "$pdf")

# 'job_ppd JOB' - The PPD a job runs with: the 1030's at 300 dpi.
job_ppd() {
  case $1 in *300*) echo "$PWD/$build/ppd/br1030.ppd" ;; *) echo "$PWD/$build/ppd/br1060.ppd" ;; esac
}

# 'measure_output JOB' - The records the filter writes for the job and the
# page after which each goes out, which the I/O floor writes the same way
# ($work/JOB.plan).
measure_output() {
  local job=$1
  PPD=$(job_ppd "$job") "$filter" 1 bench bench 1 "$options" <"$work/$job.ras" \
    2>"$work/$job.err" >"$work/$job.stream"
  "$iofloor" --plan "$work/$job.stream" >"$work/$job.plan"
  rm -f "$work/$job.stream"
}

# Processor time comes from 'perf stat -e task-clock' (the program's own
# time in milliseconds, to the microsecond) where perf can count it, else
# from /usr/bin/time (user plus system, to the hundredth of a second).
if perf stat -x, -e task-clock -o /dev/null true 2>/dev/null; then have_perf=1; else have_perf=0; fi

# 'run_one KIND JOB [rss]' - Run one program on one job through pipes;
# prints "wall-microseconds peak-KiB cpu-seconds".  With "rss" the program
# runs under /usr/bin/time for its peak resident size (cpu is then "-");
# otherwise under perf for its processor time (peak is then "-").
run_one() {
  local kind=$1 job=$2 mode=${3:-cpu} ppd t0 t1 rss=- cpu=- probe
  ppd=$(job_ppd "$job")
  local stats="$work/time.txt"
  [ -s "$work/$job.plan" ] || measure_output "$job"
  if [ "$mode" = rss ]; then probe=(/usr/bin/time -f "%M" -o "$stats")
  elif ((have_perf)); then probe=(perf stat -x, -e task-clock -o "$stats")
  else probe=(/usr/bin/time -f "- %U %S" -o "$stats"); fi
  t0=$(date +%s%N)
  case $kind in
    filter | reffilter | nullfilter)
      local prog=$filter
      [ "$kind" = reffilter ] && prog=$reffilter
      [ "$kind" = nullfilter ] && prog=$nullfilter
      cat "$work/$job.ras" | PPD=$ppd "${probe[@]}" \
        "$prog" 1 bench bench 1 "$options" 2>/dev/null | cat >/dev/null ;;
    iofloor)    # reads as the page loop does, writes the filter's records
      cat "$work/$job.ras" | BRELLIAN_FLOOR_PLAN="$work/$job.plan" \
        "${probe[@]}" "$iofloor" 1 bench bench 1 "$options" 2>/dev/null |
        cat >/dev/null ;;
    gs-panel)   # the card pages fitted to the 600 dpi panel size
      "${probe[@]}" gs -q -dNOPAUSE -dBATCH -dSAFER -sDEVICE=cups \
        -dcupsColorSpace=1 -dcupsBitsPerColor=8 -r600 -dDEVICEWIDTHPOINTS=248.64 \
        -dDEVICEHEIGHTPOINTS=159.36 -dFIXEDMEDIA -dPDFFitPage -sOutputFile=- \
        "${gs_pages[@]}" 2>/dev/null | cat >/dev/null ;;
    gs-cr80)    # the card pages at their own size, 2022 x 1276 at 600 dpi
      "${probe[@]}" gs -q -dNOPAUSE -dBATCH -dSAFER -sDEVICE=cups \
        -dcupsColorSpace=1 -dcupsBitsPerColor=8 -r600 -sOutputFile=- \
        "${gs_pages[@]}" 2>/dev/null | cat >/dev/null ;;
  esac
  t1=$(date +%s%N)
  if [ "$mode" = rss ]; then rss=$(tail -n 1 "$stats")
  elif ((have_perf)); then cpu=$(awk -F, '$3 == "task-clock" {print $1 / 1000}' "$stats")
  else read -r _ user sys < <(tail -n 1 "$stats"); cpu=$(awk -v u="$user" -v s="$sys" 'BEGIN {print u + s}'); fi
  echo "$(( (t1 - t0) / 1000 )) $rss $cpu"
}

# 'median' - Median of the numbers on standard input.
median() { sort -g | awk '{v[NR] = $1} END {print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2}'; }

# 'compare JOB A B' - runs pairs of A then B (alternating which goes first)
# and prints one table row.
compare() {
  local job=$1 a=$2 b=$3 ta=() tb=() ca=() cb=() ratios=() x y xs ys pa pb
  # The first runs warm the page cache and the binaries and give the peaks.
  read -r _ pa _ < <(run_one "$a" "$job" rss)
  read -r _ pb _ < <(run_one "$b" "$job" rss)
  for ((i = 0; i < runs; ++i)); do
    if ((i % 2 == 0)); then x=$(run_one "$a" "$job"); y=$(run_one "$b" "$job")
    else y=$(run_one "$b" "$job"); x=$(run_one "$a" "$job"); fi
    read -r -a xs <<<"$x"; read -r -a ys <<<"$y"
    ta+=("${xs[0]}"); ca+=("${xs[2]}"); tb+=("${ys[0]}"); cb+=("${ys[2]}")
    ratios+=("$(awk -v p="${xs[0]}" -v q="${ys[0]}" 'BEGIN {printf "%.4f", p / q}')")
  done
  local ma mb mr na nb
  ma=$(printf '%s\n' "${ta[@]}" | median)
  mb=$(printf '%s\n' "${tb[@]}" | median)
  mr=$(printf '%s\n' "${ratios[@]}" | median)
  na=$(printf '%s\n' "${ca[@]}" | sort -g | head -n 1)
  nb=$(printf '%s\n' "${cb[@]}" | sort -g | head -n 1)
  awk -v j="$job" -v a="$a" -v b="$b" -v ma="$ma" -v mb="$mb" -v mr="$mr" -v pa="$pa" -v pb="$pb" \
    -v na="$na" -v nb="$nb" 'BEGIN {printf "%-12s %-10s %-11s %8.3f %8.3f %7.3f %9.1f %9.1f %8.4f %8.4f %7.3f\n",
      j, a, b, ma / 1e6, mb / 1e6, mr, pa / 1024, pb / 1024, na, nb, (nb > 0) ? na / nb : 0}'
}

{
  echo "Whole-job benchmark, $(date -u '+%Y-%m-%d %H:%M UTC'), $(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg), $runs pairs"
  printf '%-12s %-10s %-11s %8s %8s %7s %9s %9s %8s %8s %7s\n' job A B "A s" "B s" "A/B" "A MiB" "B MiB" \
    "A cpu" "B cpu" "cpu A/B"
  # Every job against the I/O floor (reading the raster and writing the
  # filter's records) and against the null filter (reading only).
  for job in ${only:-card600 card600z panel600 panel600z cr80 cr80z portrait600 page600 panel300 \
    panel300z cr80at300 card300}; do
    compare "$job" filter iofloor
    ((flooronly)) || compare "$job" filter nullfilter
  done
  ((flooronly)) && exit 0
  # Against the reference stages, and against ghostscript (which writes
  # uncompressed raster) with the filter reading either form.
  compare panel600z filter reffilter
  compare cr80z filter reffilter
  compare card600 filter gs-panel
  compare card600z filter gs-panel
  compare panel600 filter gs-panel
  compare panel600z filter gs-panel
  compare cr80 filter gs-cr80
  compare cr80z filter gs-cr80
} | tee "$table"
echo "Table written to $table"
