# cjson: cJSON as a static library, built with the flags of the preset from Debian's patched source package.
# include <cJSON.h>. cmake/fetch-cjson puts the sources into the build cache, once per machine.

execute_process(
  COMMAND "${CMAKE_CURRENT_LIST_DIR}/fetch-cjson"
  OUTPUT_VARIABLE cjson_source_dir
  OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)

add_library(cjson STATIC "${cjson_source_dir}/cJSON.c")
target_include_directories(cjson SYSTEM PUBLIC "${cjson_source_dir}")
target_compile_definitions(cjson PUBLIC CJSON_HIDE_SYMBOLS)
