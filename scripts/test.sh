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

# The Debian package: dpkg -i in a throw-away overlay of this machine gives
# a working queue (skipped when not root).
bash scripts/check-package.sh
