#!/usr/bin/env bash
# The worst documents for the shell filters: a 2 MB text of one line, 6,500
# lines of text (about 1,200 pages) and 2,000 form feeds, each printed
# through texttobrellian as the spooler starts it (texttopdf, pdftopdf,
# pdftobrellian: gstoraster piped into rastertobrellian) on the 1060's PPD,
# and that text as a PDF of about 1,000 pages through pdftobrellian.  Prints the wall time, the pages the filter read
# and the job's exit status of each; optionally the same with the shell
# filters of an earlier revision, for a before/after figure.
#
# Usage: bench/run-text-bombs.sh [-b BUILD_DIR] [-r REVISION]
#   BUILD_DIR  a build with the filter and the PPD files (default build-test)
#   REVISION   a git revision whose shell filters are timed as well
# Wall times widen on a loaded machine.  Nothing here fails on a time.
. "$(dirname "$0")/lib.sh"
build=build-test
rev=
bench_options "b=build r=rev" "$@"
[ -x "$build/rastertobrellian" ] && [ -f "$build/ppd/br1060.ppd" ] || {
  echo "run-text-bombs: build the filter and the PPD files in $build first" >&2
  exit 1
}
build="$(cd "$build" && pwd)"
work="$(mktemp -d "${TMPDIR:-/tmp}/text-bombs.XXXXXX")"
trap 'rm -rf "$work"' EXIT

# 'filters DIR SOURCE' - A filter directory: the system's CUPS filters, the
# built rastertobrellian and the shell filters of SOURCE ("." for this tree,
# else a git revision).
filters() {
  mkdir -p "$1"
  local f
  for f in texttopdf pdftopdf gstoraster imagetopdf; do ln -s "/usr/lib/cups/filter/$f" "$1/$f"; done
  ln -s "$build/rastertobrellian" "$1/rastertobrellian"
  for f in pdftobrellian texttobrellian; do
    if [ "$2" = . ]; then
      cp "$(ls filters/$f ppd/$f 2>/dev/null | head -n 1)" "$1/$f"
    else
      git show "$2:filters/$f" > "$1/$f" 2>/dev/null || git show "$2:ppd/$f" > "$1/$f"
    fi
    chmod 755 "$1/$f"
  done
}

# The documents.
head -c 1500000 /dev/urandom | base64 -w 0 | head -c 2000000 > "$work/one-line.txt"
seq -f "line %g of five hundred pages of text" 1 6500 > "$work/6500-lines.txt"
head -c 2000 /dev/zero | tr '\0' '\f' > "$work/form-feeds.txt"

# 'run DIR FILTER FILE' - One job: wall seconds, pages read, exit status.
run() {
  local start end status=0 err="$work/err"
  start=$(date +%s.%N)
  PPD="$build/ppd/br1060.ppd" TMPDIR="$work" CHARSET=utf-8 CUPS_DATADIR=/usr/share/cups \
    "$1/$2" 1 bench bench 1 "frontRibbon=Monochrome" "$3" > /dev/null 2> "$err" || status=$?
  end=$(date +%s.%N)
  printf "%-16s %-16s %8.1f s %6d pages read  status %d\n" "$(basename "$3")" "$2" \
    "$(awk -v a="$start" -v b="$end" 'BEGIN { print b - a }')" "$(grep -c '^PAGE:' "$err" || true)" "$status"
}

# 'suite DIR' - The documents through the filters of DIR.
suite() {
  run "$1" texttobrellian "$work/one-line.txt"
  run "$1" texttobrellian "$work/6500-lines.txt"
  run "$1" texttobrellian "$work/form-feeds.txt"
  [ -f "$work/1000-pages.pdf" ] || PPD="$build/ppd/br1060.ppd" CHARSET=utf-8 CUPS_DATADIR=/usr/share/cups \
    "$1/texttopdf" 1 bench bench 1 "" "$work/6500-lines.txt" \
    > "$work/1000-pages.pdf" 2>/dev/null
  run "$1" pdftobrellian "$work/1000-pages.pdf"
}

filters "$work/now" .
echo "== shell filters of this tree"
suite "$work/now"
if [ -n "$rev" ]; then
  filters "$work/before" "$rev"
  echo "== shell filters of $rev"
  suite "$work/before"
fi
