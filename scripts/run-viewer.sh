#!/usr/bin/env bash
# Sets up a fresh machine, builds the sample viewer and runs it on its
# bundled skins and photos: in a window when there is a display, otherwise
# off screen, writing a screenshot of the main form.
#   scripts/run-viewer.sh [karvelview options]     e.g. --skin Ocean
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target karvelview
args=("$@")
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [[ " ${args[*]} " != *" --screenshot "* ]]; then
  args+=(--screenshot "$PWD/build/karvelview.png")
fi
exec build/bin/karvelview "${args[@]}"
