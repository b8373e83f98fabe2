# nfx_warnings: link it PRIVATE to every target of ours.

option(NFX_WERROR "Treat warnings as errors" OFF)

add_library(nfx_warnings INTERFACE)

target_compile_options(nfx_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wcast-qual -Wformat=2 -Wmissing-declarations
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
  $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>
  $<$<COMPILE_LANGUAGE:CXX>:-Wsuggest-override>
  $<$<COMPILE_LANGUAGE:CXX>:-Wextra-semi>
  $<$<BOOL:${NFX_WERROR}>:-Werror>)

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(nfx_warnings INTERFACE -Wshadow=local -Wduplicated-cond -Wlogical-op)
else()
  target_compile_options(nfx_warnings INTERFACE -Wthread-safety)
endif()
