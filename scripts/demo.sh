#!/usr/bin/env bash
# Builds the filter and its tools with the system paths inside the build
# tree, prints the built-in sample card as a duplex "ColorK" job on a model
# 1060 the way the spooler runs the filter, checks the job command stream
# with the inspector and writes every panel as a PNG file.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
build=build-demo
cmake -S . -B "$build" -DBRELLIAN_SYSROOT="$PWD/$build/sysroot" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j"$(nproc)" --target rastertobrellian brellian-samplecard brellian-jobdump brellian_ppds >/dev/null
out="$build/demo"
rm -rf "$out"
mkdir -p "$out/panels"
log="$build/sysroot/var/log/brellian/rastertobrellian.log"
rm -f "$log"

echo "== 1. Rendering the sample card to CUPS raster (5 pages, 2072 x 1328 dots, 600 dpi)"
"$build/tools/brellian-samplecard" "$out/card.ras"

options="ribbonType=YMCK-PO frontRibbon=ColorK backRibbon=ColorK frontResin=Page backResin=Page frontPO=Page"
echo "== 2. Running the filter as the spooler would:"
echo "   PPD=$build/ppd/br1060.ppd rastertobrellian 42 demo \"Sample card\" 1 \"$options\" card.ras"
PPD="$PWD/$build/ppd/br1060.ppd" PRINTER=demo-queue DEVICE_URI="usbbr://Brellian/BR-1060?serial=DEMO1" \
  "$build/rastertobrellian" 42 demo "Sample card" 1 "$options" "$out/card.ras" \
  > "$out/job.bin" 2> "$out/stderr.txt" || true
echo "   standard error (the spooler's messages):"
sed 's/^/     /' "$out/stderr.txt"
echo "   job command stream: $out/job.bin ($(stat -c %s "$out/job.bin") bytes)"

echo "== 3. Inspecting the job command stream:"
"$build/tools/brellian-jobdump" --png "$out/panels" "$out/job.bin" | sed 's/^/     /'

echo "== 4. Panels written as PNG files (colour panels in colour; black, UV and"
echo "      overlay panels dark where they are applied):"
ls -1 "$out/panels" | sed "s|^|     $out/panels/|"
echo "== The filter's log: $log ($(wc -l < "$log") lines)"
