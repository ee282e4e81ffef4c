#!/usr/bin/env bash
# Builds the filter with its system paths inside the build tree and runs it
# the way the spooler would, showing what it wrote and where its log went.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
build=build-demo
cmake -S . -B "$build" -DBRELLIAN_SYSROOT="$PWD/$build/sysroot" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j"$(nproc)" --target rastertobrellian
filter="$build/rastertobrellian"
log="$build/sysroot/var/log/brellian/rastertobrellian.log"
rm -f "$log"

echo "== Calling the filter with too few arguments (the usage path):"
set +e
"$filter" 1 demo "Demo card" 1
status=$?
set -e
echo "== Exit status: $status"
echo "== Its log ($log):"
cat "$log"
