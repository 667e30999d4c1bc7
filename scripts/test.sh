#!/usr/bin/env bash
# Installs what is missing, builds and runs every test: the CI build (warnings are errors), the
# AddressSanitizer+UBSan and ThreadSanitizer builds, the formatting check, Clang's thread-safety
# analysis of the library and a short run of each fuzzer. Exits non-zero on the first failure.
set -euo pipefail
cd "$(dirname "$0")/.."

jobs=${VEMBA_JOBS:-2}
fuzz_seconds=${VEMBA_FUZZ_SECONDS:-40}

scripts/install-deps.sh

section() { printf '\n==== %s ====\n' "$*"; }

section "format"
scripts/check-format.sh
section "test share"
scripts/check-test-share.sh

section "thread-safety analysis (clang, library code only)"
cmake --preset thread-safety >/dev/null
cmake --build --preset thread-safety -j "$jobs"

for preset in ci asan-ubsan tsan; do
  section "build ($preset)"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  section "test ($preset)"
  # The GUI tests need a display: every preset's tests run under a private Xvfb server.
  # -noreset: by default the server resets when its last client leaves and drops the connections
  # that arrive meanwhile (measured: about 2 % of connections under quick connect/disconnect), so
  # a test starting just as another ends would find no display.
  # A test that fails runs once more, and fails the run when it fails again: one end-to-end test
  # (InProcessScreensTest.AnAdIsModal...) failed about once in ten runs on a loaded machine; its
  # cause is fixed, and the retry stays until the fix has held over many loaded runs
  # (docs/RELIABILITY.md, "A fault found under load").
  # A deterministic failure still fails; every retry is printed.
  GTK_A11Y=none NO_AT_BRIDGE=1 xvfb-run -a -s "-noreset -screen 0 1280x1024x24" \
    ctest --preset "$preset" -j "$jobs" --timeout 300 --repeat until-pass:2
  if [[ $preset == ci ]]; then
    section "clang-tidy (.clang-tidy)"
    scripts/check-tidy.sh build/ci
  fi
done

section "package"
scripts/check-package.sh
section "soak (CI size: 500 ad loads, 10 checkout cycles; the full form is in docs/RELIABILITY.md)"
# The exchange of the build's origin takes the port 18443, free once the test runs above are done.
# At a tenth of its size the soak judges every callback and what is left behind exactly; its few
# memory samples judge only a gross leak (measured: +8.4 % at 10 checkout cycles with nothing
# leaking), so growth is judged at full size (docs/RELIABILITY.md).
GTK_A11Y=none NO_AT_BRIDGE=1 xvfb-run -a -s "-noreset -screen 0 1280x1024x24" \
  build/ci/bench/vemba_soak --loads 500 --checkout-cycles 10 --load-tolerance 40 \
  --checkout-tolerance 40
section "fuzz (${fuzz_seconds}s each)"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$jobs"
scripts/run-fuzzers.sh build/fuzz "$fuzz_seconds"

echo
echo "All tests passed."
