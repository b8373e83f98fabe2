# The package for Windows, one .zip of all that is installed, and what else is in it.

math(EXPR word_size "8 * ${CMAKE_SIZEOF_VOID_P}")
if(word_size EQUAL 32)
  set(visual_studio_platform Win32)
  set(dotnet_platform x86)
else()
  set(visual_studio_platform x64)
  set(dotnet_platform x64)
endif()
configure_file(windows/README.md.in README.md @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/README.md" "${CMAKE_CURRENT_BINARY_DIR}/copyright"
  DESTINATION . COMPONENT runtime)

install(
  FILES
    "${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/DiscoveryServer.ExtC.lib"
    "${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/DiscoveryInventory.lib"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT dev)

set(assembly "${PROJECT_BINARY_DIR}/bindings/csharp/DiscoveryServer.Net")
install(FILES "${assembly}.dll" "${assembly}.xml" DESTINATION dotnet COMPONENT dev)

install(CODE "
  file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/python\")
  execute_process(
    COMMAND \"${PROJECT_SOURCE_DIR}/bindings/python/pack\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/python\" win${word_size}
    OUTPUT_QUIET
    COMMAND_ERROR_IS_FATAL ANY)" COMPONENT dev)

# The libraries are stripped where they are packed; each says which file has its symbols.
foreach(target IN ITEMS extc inventory-extc)
  install(CODE "
    set(prefix \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
    set(symbols \"\${prefix}/symbols/$<TARGET_FILE_NAME:${target}>.debug\")
    file(MAKE_DIRECTORY \"\${prefix}/symbols\")
    execute_process(
      COMMAND \"${CMAKE_OBJCOPY}\" --only-keep-debug \"$<TARGET_FILE:${target}>\" \"\${symbols}\"
      COMMAND_ERROR_IS_FATAL ANY)
    execute_process(
      COMMAND \"${CMAKE_OBJCOPY}\" \"--add-gnu-debuglink=\${symbols}\"
        \"\${prefix}/${CMAKE_INSTALL_BINDIR}/$<TARGET_FILE_NAME:${target}>\"
      COMMAND_ERROR_IS_FATAL ANY)" COMPONENT dev)
endforeach()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME "DiscoveryServer.ExtC-${PROJECT_VERSION}-win${word_size}")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
