# nfx_add_dll_entry(<target>): the end of a process does not wait for threads that are gone. For each DLL.

function(nfx_add_dll_entry target)
  if(NOT WIN32)
    return()
  endif()
  target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/cmake/dll-entry.c")
  set(entry $<IF:$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>,_NfxDllEntry@12,NfxDllEntry>)
  target_link_options(${target} PRIVATE "LINKER:--entry=${entry}")
endfunction()
