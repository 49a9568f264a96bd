#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for a while.
#   scripts/fuzz.sh                 every target, 60 s each
#   scripts/fuzz.sh NAME [SECONDS]  one target (fuzz/NAME.cpp)
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
seconds="${2:-60}"
targets=("${1:-}")
[ -n "${1:-}" ] || mapfile -t targets < <(ls fuzz/*.cpp | xargs -n1 basename | sed 's/\.cpp$//')
for t in "${targets[@]}"; do
  corpus="build-fuzz/corpus/$t"
  mkdir -p "$corpus"
  seeds=()
  [ -d "fuzz/seeds/$t" ] && seeds=("fuzz/seeds/$t")
  echo "== fuzz_$t for ${seconds}s"
  SDL_VIDEODRIVER=offscreen HOME="$PWD/build-fuzz/home" \
    "build-fuzz/bin/fuzz_$t" -max_total_time="$seconds" -rss_limit_mb=4096 "$corpus" "${seeds[@]}"
done
