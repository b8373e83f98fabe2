# cjson: cJSON as a static library, built with the flags of the preset from Debian's source package and our patch to it.
# include <cJSON.h>. cmake/fetch-cjson puts the sources into the build cache, once per machine.

execute_process(
  COMMAND "${CMAKE_CURRENT_LIST_DIR}/fetch-cjson"
  OUTPUT_VARIABLE cjson_source_dir
  OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CMAKE_CURRENT_LIST_DIR}/cjson.patch")

# nfx_add_cjson(<target> <folder with the sources>)
function(nfx_add_cjson target source_dir)
  add_library(${target} STATIC "${source_dir}/cJSON.c")
  target_include_directories(${target} SYSTEM PUBLIC "${source_dir}")
  target_compile_definitions(${target} PUBLIC CJSON_HIDE_SYMBOLS)
  if(NOT NFX_SANITIZE) # saves an eighth of a parse, which is the largest single cost of a message
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release,RelWithDebInfo>:-O3>)
  endif()
endfunction()

nfx_add_cjson(cjson "${cjson_source_dir}")
