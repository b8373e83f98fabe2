# find_package(DiscoveryServerExtC) gives the targets DiscoveryServer::ExtC and DiscoveryServer::Inventory, and for C++
# DiscoveryServer::Session, SessionLoading and InventorySession.
include("${CMAKE_CURRENT_LIST_DIR}/DiscoveryServerExtCTargets.cmake")

# The targets come with MinGW's import libraries; other linkers for Windows take the ones beside them.
if(WIN32 AND NOT MINGW)
  foreach(target IN ITEMS DiscoveryServer::ExtC DiscoveryServer::Inventory)
    get_target_property(configurations ${target} IMPORTED_CONFIGURATIONS)
    foreach(configuration IN LISTS configurations)
      get_target_property(library ${target} IMPORTED_IMPLIB_${configuration})
      string(REGEX REPLACE "lib([^/]+)\\.dll\\.a$" "\\1.lib" library "${library}")
      set_property(TARGET ${target} PROPERTY IMPORTED_IMPLIB_${configuration} "${library}")
    endforeach()
  endforeach()
endif()
