#!/usr/bin/env bash
# Prints the shipped CR80 sample card (docs/samples/sample-card.pdf, two
# pages) through the real CUPS filter chain: cupsfilter renders the PDF to
# CUPS raster with the upstream filters and ghostscript, and runs
# rastertobrellian on it with the model 1060 PPD, as the spooler would for a
# duplex "ColorK" job.  The job command stream is then checked and its
# panels written as PNG files.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh --full
build=build-demo
cmake -S . -B "$build" -DBRELLIAN_SYSROOT="$PWD/$build/sysroot" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j"$(nproc)" --target rastertobrellian brellian-jobdump brellian_ppds >/dev/null
out="$PWD/$build/demo-cups"
rm -rf "$out"
mkdir -p "$out/serverbin/filter" "$out/panels"
# cupsfilter finds filters in ServerBin: the system's, plus the built one.
for f in /usr/lib/cups/filter/*; do ln -s "$f" "$out/serverbin/filter/"; done
ln -s "$PWD/$build/rastertobrellian" "$out/serverbin/filter/rastertobrellian"
ln -s "$PWD/filters/pdftobrellian" "$PWD/filters/texttobrellian" "$out/serverbin/filter/"
echo "ServerBin $out/serverbin" > "$out/cups-files.conf"

options=(-o frontRibbon=ColorK -o frontResin=Preset1 -o Duplex=DuplexNoTumble)
echo "== cupsfilter -p br1060.ppd ${options[*]} docs/samples/sample-card.pdf"
/usr/sbin/cupsfilter -c "$out/cups-files.conf" -p "$build/ppd/br1060.ppd" -m printer/brellian -e \
  "${options[@]}" docs/samples/sample-card.pdf > "$out/job.bin" 2> "$out/cupsfilter.log"
grep -E '^(PAGE|INFO|ERROR):' "$out/cupsfilter.log" | grep -vE ' \(PID |complete\.\.\.' | sed 's/^/     /' || true
echo "== The job command stream ($(stat -c %s "$out/job.bin") bytes):"
"$build/tools/brellian-jobdump" --png "$out/panels" "$out/job.bin" | sed 's/^/     /'
