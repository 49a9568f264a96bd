#!/usr/bin/env bash
# Sets up a fresh machine, builds the library and passes the tests.
#   scripts/test.sh          default build (build/)
#   scripts/test.sh asan     AddressSanitizer + UndefinedBehaviorSanitizer (build-asan/)
#   scripts/test.sh tsan     ThreadSanitizer (build-tsan/)
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"

scripts/setup.sh
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset"
