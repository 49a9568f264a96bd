#!/usr/bin/env bash
# Builds the picture generator and redraws every picture under assets/
# (skin borders and demo photos). The skins' XML files and the string table
# are edited by hand; after restyling a border, paste the Image elements
# printed here into that skin's KarvelView.xml.
#   scripts/make-assets.sh
set -euo pipefail
cd "$(dirname "$0")/.."
[ -f build/build.ninja ] || cmake --preset default
cmake --build build --target skingen
build/bin/skingen assets
