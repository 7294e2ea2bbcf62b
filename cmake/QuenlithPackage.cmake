# The settings of `cpack`, which makes a .deb and a .tar.gz of what `cmake --install` installs; included
# last. The preset `package` builds what they contain.
#
# Before an archive is written, package/finishTree.cmake adds what only packages have and gives every file
# the same time, so that two builds of the same sources give the same bytes.
set(QUENLITH_MAINTAINER "Quenlith maintainers <maintainers@quenlith.example>" CACHE STRING
  "Name and address of the maintainer in the .deb")
# Only cpack needs it, not a build.
find_package(Python3 QUIET COMPONENTS Interpreter)

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_NAME quenlith)
set(CPACK_PACKAGE_VENDOR "Quenlith")
set(CPACK_PACKAGE_CONTACT "${QUENLITH_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "parsers for markers in the comments of source files")
set(CPACK_PACKAGE_DESCRIPTION
"Quenlith turns source files whose comments contain markers into structured
documents. This package contains the program tessera, the parsers as a
service bundle, and what it takes to write hosts and bundles: libraries,
headers, a CMake package and a pkg-config file.")
set(CPACK_PACKAGE_FILE_NAME "quenlith-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PROJECT_CONFIG_FILE "${PROJECT_SOURCE_DIR}/cmake/package/setTime.cmake")
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/package/finishTree.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/package/repack.cmake")
# For the scripts.
set(CPACK_QUENLITH_PYTHON "${Python3_EXECUTABLE}")
set(CPACK_QUENLITH_SOURCE "${PROJECT_SOURCE_DIR}")
set(CPACK_QUENLITH_BUILD "${PROJECT_BINARY_DIR}")
set(CPACK_QUENLITH_COMPILER "${CMAKE_CXX_COMPILER}")

# Writes which package other packages need for a library, and that a change of the libraries is noted.
function(quenlith_write_control_files folder)
  get_property(names GLOBAL PROPERTY QUENLITH_LINKED)
  set(version "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
  list(SORT names)
  list(TRANSFORM names REPLACE "(.+)" "libquenlith_\\1 ${version} quenlith (>= ${PROJECT_VERSION})\n")
  string(CONCAT text ${names})
  file(CONFIGURE OUTPUT "${folder}/shlibs" CONTENT "${text}")
  file(CONFIGURE OUTPUT "${folder}/triggers" CONTENT "activate-noawait ldconfig\n")
endfunction()

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Not CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS: it warns of every bundle and runs ldconfig from scripts.
quenlith_write_control_files("${PROJECT_BINARY_DIR}/package/control")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  "${PROJECT_BINARY_DIR}/package/control/shlibs" "${PROJECT_BINARY_DIR}/package/control/triggers")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
find_package(Boost 1.75 REQUIRED)
# What it takes to compile and link against the libraries.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS
  "g++, cmake, pkg-config, zip, libboost${Boost_VERSION_MAJOR}.${Boost_VERSION_MINOR}-dev")

install(FILES "${PROJECT_SOURCE_DIR}/cmake/package/copyright" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/quenlith")
include(CPack)
