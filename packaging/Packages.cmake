# The packages that cpack makes: three .deb for Linux, a .zip for Windows.

set(CPACK_PACKAGE_NAME DiscoveryServer.ExtC)
set(CPACK_PACKAGE_VENDOR "${PROJECT_COMPANY}")
set(CPACK_PACKAGE_CONTACT "${PROJECT_COMPANY} <discovery@zent.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each component has its own, the first line of its description
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
  math(EXPR word_size "8 * ${CMAKE_SIZEOF_VOID_P}")
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME "DiscoveryServer.ExtC-${PROJECT_VERSION}-win${word_size}")
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

# Named after the SONAME: a library of the next binary interface can be installed beside this one.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libdiscoveryserver.extc${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_SOURCE_DIR}/triggers")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
"${PROJECT_DESCRIPTION}, the library
A library that finds devices by JSON datagrams over UDP, behind a plain C
interface.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libdiscoveryserver.extc-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_COMPONENT_DEV_DESCRIPTION
"${PROJECT_DESCRIPTION}, for development
The header, what CMake and pkg-config need to build host programs, samples and
documentation.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME discoveryserver.extc-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION net)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
"${PROJECT_DESCRIPTION}, programs for the command line
discovery-console asks devices for their signatures and gives them names and
settings; device-simulator answers as devices do.")

# Each Debian package has its copyright file and its changelog in a folder of its own.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(changelog.in changelog @ONLY)
nfx_compress("${CMAKE_CURRENT_BINARY_DIR}/changelog" "${CMAKE_CURRENT_BINARY_DIR}/changelog.gz")
foreach(component IN ITEMS runtime dev tools)
  string(TOUPPER ${component} prefix)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/copyright" "${CMAKE_CURRENT_BINARY_DIR}/changelog.gz"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${prefix}_PACKAGE_NAME}" COMPONENT ${component})
endforeach()
