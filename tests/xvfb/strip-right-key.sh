#!/usr/bin/env bash
# The viewer in its own Xvfb, opened on a photo of the bundled folder: the
# Right key selects the next picture of the film strip and the status line
# changes to name it. The viewer appends each status line to a file
# (--status-file), which is what is read here.
#   strip-right-key.sh KARVELVIEW PHOTOS_FOLDER WORK_FOLDER
set -euo pipefail
viewer=$1 photos=$2 work=$3
[ -x /usr/bin/Xvfb ] && command -v xdotool >/dev/null || { echo "Xvfb or xdotool missing: skipped"; exit 0; }
rm -rf "$work" && mkdir -p "$work"
status=$work/status.txt
pids=()
cleanup() { for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done; }
trap cleanup EXIT

# Waits up to $1 seconds for the command after it to succeed.
wait_for() {
  local limit=$(( $1 * 10 )); shift
  for ((i = 0; i < limit; i++)); do "$@" && return 0; sleep 0.1; done
  return 1
}

number=
for n in $(seq 140 199); do
  [ -e "/tmp/.X$n-lock" ] || [ -e "/tmp/.X11-unix/X$n" ] || { number=$n; break; }
done
[ -n "$number" ] || { echo "no free display"; exit 1; }
Xvfb ":$number" -screen 0 1280x1024x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
pids+=($!)
wait_for 20 test -S "/tmp/.X11-unix/X$number" || { echo "Xvfb did not start"; cat "$work/xvfb.log"; exit 1; }
export DISPLAY=:$number

HOME=$work XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache SDL_VIDEODRIVER=x11 LIBGL_ALWAYS_SOFTWARE=1 \
  "$viewer" "$photos/Lakeside.jpg" --skin Default --status-file "$status" >"$work/viewer.log" 2>&1 &
pids+=($!)

# The strip names a picture "800 x 1200", the photo view "800 × 1200" once shown.
has_status() { [ -s "$status" ] && grep -q "$1" "$status"; }
wait_for 30 has_status 'Lakeside.jpg  1600 . 1067' || { echo "no status for Lakeside.jpg"; cat "$status" 2>/dev/null; exit 1; }
window=$(xdotool search --sync --name '^KarvelView$' | head -n 1)
xdotool windowfocus --sync "$window" 2>/dev/null || true
xdotool key --window "$window" Right
# Sorted without case: Bubbles, ColourChart, Evening, Lakeside, Lighthouse, ...
wait_for 30 has_status 'Lighthouse.jpg  800 . 1200' || { echo "Right did not select Lighthouse.jpg"; cat "$status"; exit 1; }
echo "status after Right: $(tail -n 1 "$status")"
