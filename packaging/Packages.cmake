# The packages: a .zip for Windows by cpack, those for Debian by debhelper.

set(CPACK_PACKAGE_NAME DiscoveryServer.ExtC)
set(CPACK_PACKAGE_VENDOR "${PROJECT_COMPANY}")
set(CPACK_PACKAGE_CONTACT "${PROJECT_COMPANY} <${PROJECT_CONTACT}>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each component has its own, the first line of its description
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
  math(EXPR word_size "8 * ${CMAKE_SIZEOF_VOID_P}")
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME "DiscoveryServer.ExtC-${PROJECT_VERSION}-win${word_size}")
  include(CPack)
  return()
endif()

# For packaging/debian-packages.
set(debian_dir "${CMAKE_CURRENT_BINARY_DIR}/debian")
math(EXPR next_interface "${PROJECT_VERSION_MAJOR} + 1")
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(debian/control.in "${debian_dir}/control" @ONLY)
configure_file(debian/changelog.in "${debian_dir}/changelog" @ONLY)
