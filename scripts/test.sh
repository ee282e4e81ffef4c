#!/usr/bin/env bash
# Builds everything with the test layout (system paths inside the build tree)
# and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh --full
build=build-test
cmake -S . -B "$build" -DBRELLIAN_BUILD_TESTS=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$(nproc)"
ctest --test-dir "$build" --output-on-failure

# The golden digests of the printed bytes from an -O3 -march=x86-64-v3 build.
bash scripts/check-golden-flags.sh

# The Debian package: dpkg -i in a throw-away overlay of this machine gives
# a working queue (skipped when not root).
bash scripts/check-package.sh

# The same suite with AddressSanitizer and UndefinedBehaviorSanitizer: the
# process tests then run the sanitized filter, and any report fails them.
asan=build-asan
cmake -S . -B "$asan" -DBRELLIAN_BUILD_TESTS=ON -DBRELLIAN_SANITIZE=ON \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$asan" -j"$(nproc)"
# The signal-timing trials (label "trials") ran once above, and so did the
# long end-to-end tables whose time goes to the upstream filters and the
# symbol readers rather than to our code (the badge table, the real
# documents) and the batch tool's crash trials: the sanitized filter still
# runs in every other process and end-to-end test.
ASAN_OPTIONS=detect_leaks=1:abort_on_error=0 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir "$asan" --output-on-failure -LE trials \
    -E '^(BadgeTable|RealDocuments|BatchCrash)\.'

# Every fuzz target for a short, fixed time from its seeds.
bash scripts/fuzz.sh 10
