#!/usr/bin/env bash
# Installs the built library into a temporary prefix, then builds the tiny
# host of tests/package/host against it twice (CMake package, pkg-config) and
# runs it beside a copy of the sample skins.
#   check-install.sh SOURCE_DIR BUILD_DIR WORK_DIR
set -euo pipefail
source_dir=$1 build_dir=$2 work=$3
rm -rf "$work" && mkdir -p "$work"
prefix=$work/prefix

cmake --install "$build_dir" --prefix "$prefix" > "$work/install.log"
for f in include/karvelui/UIForm.h lib/cmake/KarvelUI/KarvelUIConfig.cmake lib/pkgconfig/karvelui.pc; do
  [ -e "$prefix/$f" ] || { echo "missing after install: $f"; exit 1; }
done
soname=$(objdump -p "$prefix/lib/libkarvelui.so" | awk '/SONAME/ {print $2}')
[ "$soname" = "libkarvelui.so.0" ] || { echo "SONAME is '$soname'"; exit 1; }
[ -e "$prefix/lib/libZorImgUtil.so" ] || { echo "the RAW extraction library is not installed"; exit 1; }
if nm -DC --defined-only "$prefix/lib/libkarvelui.so" | grep -q "KarvelUI::fake::"; then
  echo "the installed library exports the GPU test double"; exit 1
fi

run_host() {  # folder of a built host
  cp -r "$source_dir/assets/Theme" "$source_dir/assets/KarvelView.lng" "$1/"
  (cd "$1" && ./host) | tee "$1/host.out"
  # The default skin's caption band (assets/README.md).
  grep -q "caption FF3E424A$" "$1/host.out"
}

cmake -S "$source_dir/tests/package/host" -B "$work/cmake-host" -G Ninja \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="${CXX:-c++}" > "$work/cmake-host.log"
cmake --build "$work/cmake-host" > "$work/cmake-host-build.log"
run_host "$work/cmake-host"

mkdir -p "$work/pc-host"
flags=$(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs karvelui)
# shellcheck disable=SC2086
${CXX:-c++} "$source_dir/tests/package/host/main.cpp" -o "$work/pc-host/host" $flags -Wl,-rpath,"$prefix/lib"
run_host "$work/pc-host"
echo "package: installed, built against with CMake and pkg-config, run"
