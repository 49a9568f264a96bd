#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (ASan+UBSan) and runs them.
#   scripts/fuzz.sh                      the campaign: every target for 30 minutes
#                                        or 10 million executions, one after the other
#   scripts/fuzz.sh NAME [SECONDS]       one target (fuzz/NAME.cpp)
#   scripts/fuzz.sh all SECONDS          every target for SECONDS each
# The corpus grows in build-fuzz/corpus/NAME from the committed seeds and
# regression inputs; a crashing input lands in build-fuzz/findings/NAME/ (fix
# it, then commit it to fuzz/regressions/NAME/ so the tests replay it).
# Each run's last lines (executions, exec/s, peak RSS) are kept in
# build-fuzz/logs/NAME.log.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j2

seconds="${2:-1800}"
targets=()
if [ -n "${1:-}" ] && [ "$1" != all ]; then
  targets=("$1")
else
  mapfile -t targets < <(ls build-fuzz/bin/ | sed -n 's/^fuzz_\([a-z_]*\)$/\1/p' | grep -v '^replay_')
fi
shared_testdata="$PWD/../shared/testdata"
[ -d "$shared_testdata" ] || shared_testdata="$PWD/../../shared/testdata"
for t in "${targets[@]}"; do
  corpus="build-fuzz/corpus/$t"
  mkdir -p "$corpus" "build-fuzz/findings/$t" build-fuzz/logs
  inputs=()
  for d in "fuzz/seeds/$t" "fuzz/regressions/$t"; do [ -d "$d" ] && inputs+=("$d"); done
  # Real third-party samples are read in place, never copied into the repository.
  [ "$t" = thumbs_db ] && [ -d "$shared_testdata/thumbsdb" ] && inputs+=("$shared_testdata/thumbsdb")
  echo "== fuzz_$t for ${seconds}s"
  SDL_VIDEODRIVER=offscreen HOME="$PWD/build-fuzz/home" XDG_DATA_HOME="$PWD/build-fuzz/home/data" \
    "build-fuzz/bin/fuzz_$t" -max_total_time="$seconds" -runs=10000000 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="build-fuzz/findings/$t/" "$corpus" "${inputs[@]}" \
    2>&1 | tee "build-fuzz/logs/$t.log" | grep -E '^#[0-9]+ *(INITED|DONE|pulse)|ERROR|SUMMARY|stat::|Test unit written' || true
done
