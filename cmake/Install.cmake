# cmake --install: the library (with its SONAME links), the RAW extraction
# library beside it, the public headers, karvelui.pc and the CMake package
# (find_package(KarvelUI) -> KarvelUI::karvelui).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(KARVEL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KarvelUI)

install(TARGETS karvelui EXPORT KarvelUITargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_COMPONENT Development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# Loaded with dlopen beside libkarvelui.so; no headers, no link.
install(TARGETS ZorImgUtil LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${KARVEL_PUBLIC_INCLUDE}/karvelui DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h")

install(EXPORT KarvelUITargets NAMESPACE KarvelUI:: DESTINATION ${KARVEL_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KarvelUIConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KarvelUIConfig.cmake INSTALL_DESTINATION ${KARVEL_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KarvelUIConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KarvelUIConfig.cmake ${PROJECT_BINARY_DIR}/KarvelUIConfigVersion.cmake
  DESTINATION ${KARVEL_CMAKE_DIR})

# The .pc file finds its prefix from where it lies, so an install moved with
# "cmake --install --prefix" still points at its own headers and library.
file(RELATIVE_PATH KARVEL_PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" KARVEL_PC_TO_PREFIX "${KARVEL_PC_TO_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/karvelui.pc.in ${PROJECT_BINARY_DIR}/karvelui.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/karvelui.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
