# minizip: the library that writes zip archives, with the compression library under it; include <minizip/zip.h>. Linux
# has it as a package. For Windows Debian has the compression library alone, so minizip is built from its source
# package, which cmake/fetch-minizip puts into the build cache, once per machine.

if(NOT WIN32)
  find_path(minizip_include_dir minizip/zip.h REQUIRED)
  find_library(minizip_library minizip REQUIRED)
  add_library(minizip INTERFACE)
  target_link_libraries(minizip INTERFACE "${minizip_library}")
  return()
endif()

execute_process(
  COMMAND "${CMAKE_CURRENT_LIST_DIR}/fetch-minizip"
  OUTPUT_VARIABLE minizip_source_dir
  OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
find_library(zlib_library libz.a REQUIRED)
set(minizip_folder "${PROJECT_BINARY_DIR}/third-party/minizip-headers")
file(MAKE_DIRECTORY "${minizip_folder}")
file(CREATE_LINK "${minizip_source_dir}" "${minizip_folder}/minizip" SYMBOLIC)

add_library(minizip STATIC "${minizip_source_dir}/ioapi.c" "${minizip_source_dir}/zip.c")
target_compile_definitions(minizip PRIVATE NOCRYPT)
target_include_directories(minizip SYSTEM PUBLIC "${minizip_folder}")
target_link_libraries(minizip PUBLIC "${zlib_library}")
