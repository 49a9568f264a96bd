# Every dependency is a Debian package installed by scripts/setup.sh.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
pkg_check_modules(SDL2 REQUIRED IMPORTED_TARGET sdl2)
pkg_check_modules(EPOXY REQUIRED IMPORTED_TARGET epoxy)
pkg_check_modules(TINYXML REQUIRED IMPORTED_TARGET tinyxml)
pkg_check_modules(CRYPTO REQUIRED IMPORTED_TARGET libcrypto)
pkg_check_modules(GSF REQUIRED IMPORTED_TARGET libgsf-1)
pkg_check_modules(FREETYPE REQUIRED IMPORTED_TARGET freetype2)
pkg_check_modules(HARFBUZZ REQUIRED IMPORTED_TARGET harfbuzz)
pkg_check_modules(FONTCONFIG REQUIRED IMPORTED_TARGET fontconfig)
pkg_check_modules(LIBRAW REQUIRED IMPORTED_TARGET libraw_r)
# Window shapes and the window-manager check on X11 (the platform layer).
pkg_check_modules(X11 REQUIRED IMPORTED_TARGET x11 xext)
pkg_check_modules(TURBOJPEG REQUIRED IMPORTED_TARGET libturbojpeg)

find_path(FREEIMAGE_INCLUDE_DIR FreeImage.h REQUIRED)
find_library(FREEIMAGE_LIBRARY NAMES freeimage REQUIRED)
add_library(karvel_freeimage INTERFACE)
target_include_directories(karvel_freeimage INTERFACE ${FREEIMAGE_INCLUDE_DIR})
target_link_libraries(karvel_freeimage INTERFACE ${FREEIMAGE_LIBRARY})
add_library(karvel::freeimage ALIAS karvel_freeimage)

add_library(karvel_deps INTERFACE)
target_link_libraries(karvel_deps INTERFACE
  PkgConfig::SDL2 PkgConfig::EPOXY PkgConfig::TINYXML PkgConfig::CRYPTO
  PkgConfig::GSF PkgConfig::FREETYPE PkgConfig::HARFBUZZ PkgConfig::FONTCONFIG PkgConfig::TURBOJPEG
  PkgConfig::X11 karvel::freeimage Threads::Threads ${CMAKE_DL_LIBS})
add_library(karvel::deps ALIAS karvel_deps)
