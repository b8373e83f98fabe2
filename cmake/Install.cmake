# What cmake --install puts into a prefix, in three components:
#   runtime  the library
#   dev      what building a host needs: header, import library, CMake package, pkg-config file, samples, documentation
#   tools    the programs

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

# nfx_install_program(<program> <section>): with its completion, and its manual page of that section.
function(nfx_install_program program section)
  install(TARGETS ${program} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
  if(NOT WIN32)
    install(FILES completion/${program} DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT tools)
    install(FILES man/${program}.${section} DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}" COMPONENT tools)
  endif()
endfunction()
