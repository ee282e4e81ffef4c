#!/usr/bin/env bash
# Builds the filter and the golden-digest tests with -O3 -march=x86-64-v3
# (AVX2 and fused multiply-add available to the compiler) and runs them:
# the printed bytes must be those of the default -O2 build and of the
# sanitizer build, which run the same digests in their test suites.
# Skipped where the processor cannot run x86-64-v3 code.
set -euo pipefail
cd "$(dirname "$0")/.."
loader=/lib64/ld-linux-x86-64.so.2
help=""
[ -x "$loader" ] && help="$("$loader" --help 2>/dev/null || true)"
if ! grep -q 'x86-64-v3 (supported' <<<"$help"; then
  echo "check-golden-flags: this processor cannot run x86-64-v3 code; skipped"
  exit 0
fi
build=build-v3
cmake -S . -B "$build" -DBRELLIAN_BUILD_TESTS=ON -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_CXX_FLAGS="-march=x86-64-v3" >/dev/null
cmake --build "$build" -j"$(nproc)" --target brellian_golden_tests
"$build/tests/brellian_golden_tests"
