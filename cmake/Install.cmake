# What cmake --install puts into a prefix, in three components:
#   runtime  the library
#   dev      what building a host needs: header, import library, CMake package, pkg-config file, samples, documentation
#   tools    the console and the simulator

# Debian's loader, compilers and pkg-config look into the multiarch folder, below /usr and /usr/local alike.
if(CMAKE_LIBRARY_ARCHITECTURE AND EXISTS /etc/debian_version AND NOT CMAKE_CROSSCOMPILING)
  set(CMAKE_INSTALL_LIBDIR "lib/${CMAKE_LIBRARY_ARCHITECTURE}" CACHE PATH "Folder of libraries below the prefix")
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Folders get these rights whatever the umask of who builds.
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

if(WIN32)
  set(NFX_INSTALL_DOCDIR .)
else()
  set(NFX_INSTALL_DOCDIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/DiscoveryServer.ExtC")
endif()

# nfx_compress(<file> <result>): a gzip file that says nothing of when and from what it was made.
function(nfx_compress file result)
  find_program(NFX_GZIP gzip REQUIRED)
  execute_process(
    COMMAND "${NFX_GZIP}" --no-name --best --stdout "${file}"
    OUTPUT_FILE "${result}"
    COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
endfunction()

# nfx_install_manual_page(<file>): compressed, as pages are in Debian.
function(nfx_install_manual_page file)
  get_filename_component(name "${file}" NAME)
  set(page "${CMAKE_CURRENT_BINARY_DIR}/${name}.gz")
  nfx_compress("${CMAKE_CURRENT_SOURCE_DIR}/${file}" "${page}")
  string(REGEX MATCH "[0-9]$" section "${name}")
  install(FILES "${page}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}" COMPONENT tools)
endfunction()
