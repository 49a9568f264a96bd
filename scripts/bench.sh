#!/usr/bin/env bash
# Builds the benchmarks in Release and runs them all (or the ones named).
#   scripts/bench.sh            every bench/*.cpp
#   scripts/bench.sh NAME...    only bench/NAME.cpp
# The thumbnail benchmark (thumbs) also installs its baseline, vipsthumbnail.
set -euo pipefail
cd "$(dirname "$0")/.."
names=("$@")
[ ${#names[@]} -gt 0 ] || mapfile -t names < <(ls bench/*.cpp | xargs -n1 basename | sed 's/\.cpp$//')
setup=()
for n in "${names[@]}"; do [ "$n" = thumbs ] && setup=(bench); done
scripts/setup.sh "${setup[@]}"
cmake --preset bench >/dev/null
cmake --build --preset bench
for n in "${names[@]}"; do
  echo "== bench_$n"
  SDL_VIDEODRIVER="${SDL_VIDEODRIVER:-offscreen}" "build-bench/bin/bench_$n"
done
