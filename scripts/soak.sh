#!/usr/bin/env bash
# Soak run of the viewer (not part of CI): builds, writes a folder of about
# 200 mixed pictures and lets the off-screen viewer walk it for a while,
# switching skins and opening menus, then reports resident memory after the
# first pass and at the end, open files, threads and the trace log's lines;
# then a short run under valgrind's memcheck.
#   scripts/soak.sh                  600 s soak, 60 s memcheck
#   scripts/soak.sh SECONDS [MEMCHECK_SECONDS]   (0 skips memcheck)
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-600}"
memcheck_seconds="${2:-60}"

scripts/setup.sh soak
cmake --preset default >/dev/null
cmake --build --preset default --target karvelview

work="$PWD/build/soak"
rm -rf "$work"
mkdir -p "$work/home"
python3 scripts/soak-pictures.py "$work/pictures"
viewer() {
  env HOME="$work/home" XDG_DATA_HOME="$work/home/data" XDG_CACHE_HOME="$work/home/cache" \
      SDL_VIDEODRIVER=offscreen SDL_AUDIODRIVER=dummy LIBGL_ALWAYS_SOFTWARE=1 "$@"
}

echo "== soak: ${seconds}s over $(ls "$work/pictures" | wc -l) files"
viewer build/bin/karvelview --soak "$seconds" "$work/pictures" | tee "$work/soak.log"

trace="$(ls "$work"/home/data/*/*/KarvelViewTrace.log)"
first=$(sed -n 's/.*after first pass: rss_kb=\([0-9]*\).*/\1/p' "$work/soak.log")
last=$(sed -n 's/.*end: rss_kb=\([0-9]*\).*/\1/p' "$work/soak.log")
fig() { sed -n "s/.*$1: .*$2=\([0-9]*\).*/\1/p" "$work/soak.log"; }
echo "== trace log: $(wc -l < "$trace") lines"
sed 's/^\[[^]]*\] //' "$trace" | sed 's/: .*//' | sort | uniq -c | sort -rn | head -20
status=0
growth=$(( (last - first) * 100 / first ))
echo "== resident memory: ${first} kB after the first pass, ${last} kB at the end (${growth}%)"
[ "$growth" -le 10 ] || { echo "soak: resident memory grew by more than 10%"; status=1; }
echo "== open files: $(fig 'after first pass' fds) after the first pass, $(fig end fds) at the end"
[ "$(fig 'after first pass' fds)" = "$(fig end fds)" ] || { echo "soak: open files changed"; status=1; }
echo "== threads: $(fig 'after first pass' threads) after the first pass, $(fig end threads) at the end"
[ "$(fig 'after first pass' threads)" = "$(fig end threads)" ] || { echo "soak: threads changed"; status=1; }

if [ "$memcheck_seconds" -gt 0 ]; then
  mkdir -p "$work/few"
  ls "$work/pictures" | awk 'NR % 10 == 1' | while read -r f; do cp "$work/pictures/$f" "$work/few/"; done
  echo "== memcheck: ${memcheck_seconds}s over $(ls "$work/few" | wc -l) files"
  viewer valgrind --tool=memcheck --leak-check=full --errors-for-leak-kinds=definite --show-leak-kinds=definite \
    --num-callers=30 --log-file="$work/memcheck.log" \
    build/bin/karvelview --soak "$memcheck_seconds" "$work/few" > "$work/memcheck-run.log" 2>&1 || true
  grep -E "definitely lost|ERROR SUMMARY" "$work/memcheck.log" || true
  # Losses allocated by our code (the library, the viewer): the first frame
  # below the allocator is ours. A loss inside a system library that our
  # code merely called into (fontconfig's configuration, say) is not.
  ours=$(awk '/definitely lost in loss record/{block=1; first=""; next}
              block && first == "" && /by 0x/{first=$0}
              /^==[0-9]+== $/{if(block && first ~ /KarvelUI|KarvelView/) n++; block=0}
              END{print n+0}' "$work/memcheck.log")
  echo "== memcheck: ${ours} definite losses with our code on the stack (log: $work/memcheck.log)"
  [ "$ours" -eq 0 ] || status=1
fi
exit "$status"
