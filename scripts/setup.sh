#!/usr/bin/env bash
# Installs every Debian package the project builds, tests and runs with.
# Idempotent; needs root (or sudo). Touches nothing but apt.
#   scripts/setup.sh         the packages for building, testing and running
#   scripts/setup.sh bench   those plus the benchmarks' baselines
#   scripts/setup.sh soak    those plus the soak run's memory checker
set -euo pipefail

PACKAGES=(
  build-essential g++ cmake ninja-build pkg-config ccache clang
  libsdl2-dev libepoxy-dev libfreeimage-dev libtinyxml-dev libssl-dev
  libraw-dev libgsf-1-dev libfreetype-dev libharfbuzz-dev libfontconfig-dev
  libgl1-mesa-dri libegl-mesa0 libegl1 libgles2
  fonts-dejavu-core fonts-wqy-zenhei
  libgtest-dev libgmock-dev libbenchmark-dev
  libx11-dev libxext-dev
  xvfb x11-utils xdotool libxtst-dev
  libturbojpeg0-dev
)
# Baselines the benchmarks measure against; never needed to build or test.
BENCH_PACKAGES=(libvips-tools)
[ "${1:-}" = bench ] && PACKAGES+=("${BENCH_PACKAGES[@]}")
# The soak run's memory checker (scripts/soak.sh); never needed to build or test.
SOAK_PACKAGES=(valgrind python3)
[ "${1:-}" = soak ] && PACKAGES+=("${SOAK_PACKAGES[@]}")

missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: all packages present"
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "setup: run as root to install: ${missing[*]}" >&2; exit 1; }
  SUDO="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -q
$SUDO apt-get install -y -q --no-install-recommends "${missing[@]}"
