#!/usr/bin/env bash
# Builds everything with the test layout (system paths inside the build tree)
# and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
# 'step()' - Name the next step and the minutes spent so far, so that a
# slow run shows where its time went.
step() { echo "== test.sh: $1 (at $((SECONDS / 60)) min $((SECONDS % 60)) s)"; }
step "installing the packages"
bash scripts/install-deps.sh --full
step "normal build and every test"
build=build-test
cmake -S . -B "$build" -DBRELLIAN_BUILD_TESTS=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$(nproc)"
ctest --test-dir "$build" --output-on-failure

# The golden digests of the printed bytes from an -O3 -march=x86-64-v3 build.
step "golden digests at -O3 -march=x86-64-v3"
bash scripts/check-golden-flags.sh

# The Debian package: dpkg -i in a throw-away overlay of this machine gives
# a working queue (skipped when not root).
step "the Debian package"
bash scripts/check-package.sh

# The same suite with AddressSanitizer and UndefinedBehaviorSanitizer: the
# process tests then run the sanitized filter, and any report fails them.
# It builds only what it runs: no printer application (its tests ran above)
# and no end-to-end or trial binaries; and with line tables only (-g1),
# which the sanitizers' stack traces need, not full debug information.
step "sanitized build and tests"
asan=build-asan
cmake -S . -B "$asan" -DBRELLIAN_BUILD_TESTS=ON -DBRELLIAN_SANITIZE=ON \
  -DBRELLIAN_BUILD_PRINTER_APP=OFF -DBRELLIAN_BUILD_LONG_TESTS=OFF \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -g1 -DNDEBUG" \
  "-DCMAKE_C_FLAGS_RELWITHDEBINFO=-O2 -g1 -DNDEBUG" >/dev/null
cmake --build "$asan" -j"$(nproc)"
# The sanitized build runs the tests of our own code: unit, process,
# hostile, golden and tools (the filter, the tools and the backend run
# sanitized in every process test). The end-to-end, printer-application
# and signal-trial labels ran once above: their time goes to the spooler,
# the upstream filters, the browser and the symbol readers.
ASAN_OPTIONS=detect_leaks=1:abort_on_error=0 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir "$asan" --output-on-failure -L '^(unit|process|hostile|golden|tools)$'

# Every fuzz target for a short, fixed time from its seeds.
step "fuzzing"
bash scripts/fuzz.sh 10
step "done"
