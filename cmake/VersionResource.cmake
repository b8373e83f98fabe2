# nfx_add_version_resource(<target> <description>): what the properties of the target's file show on Windows.

if(WIN32)
  enable_language(RC)
endif()

function(nfx_add_version_resource target description)
  if(NOT WIN32)
    return()
  endif()
  get_target_property(type ${target} TYPE)
  set(file_type VFT_$<IF:$<STREQUAL:${type},EXECUTABLE>,APP,DLL>)
  string(REPLACE "." "," numbers "${PROJECT_VERSION}")
  set(resource "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/version.rc.in" "${resource}.in" @ONLY)
  file(GENERATE OUTPUT "${resource}" INPUT "${resource}.in" TARGET ${target})
  target_sources(${target} PRIVATE "${resource}")
endfunction()
