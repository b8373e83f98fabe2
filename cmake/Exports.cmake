# nfx_export_only(<target> <list>): the shared library exports the functions of the list and nothing else. A line of the
# list is a function's name, and how many bytes its arguments take on 32-bit Windows. A DLL gets a second import library,
# <name>.lib, for Microsoft's linker.
#
# An ELF library stays mapped after dlclose: its process-wide objects are never destroyed, so loading it again finds them
# instead of leaking them, and a host that forgot to end them does not crash.

# Writes a file with a line for each function, in which \\1 is its name and \\2 the bytes of its arguments.
function(nfx_write_exports functions file head line tail)
  foreach(function IN LISTS functions)
    string(REGEX REPLACE "(.+) (.+)" "${line}" text "${function}")
    string(APPEND lines "    ${text}\n")
  endforeach()
  file(GENERATE OUTPUT "${file}" CONTENT "${head}\n${lines}${tail}")
endfunction()

function(nfx_export_only target list)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list}")
  file(STRINGS "${list}" functions REGEX "^[A-Z]")
  if(NOT WIN32)
    set(exports "${CMAKE_CURRENT_BINARY_DIR}/exports.map")
    nfx_write_exports("${functions}" "${exports}" "{ global:" "\\1;" "local: *; };\n")
    target_link_options(${target} PRIVATE "-Wl,--version-script=${exports}" -Wl,-z,nodelete)
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${exports}")
    return()
  endif()

  set(exports "${CMAKE_CURRENT_BINARY_DIR}/exports.def")
  get_target_property(name ${target} OUTPUT_NAME)
  set(head "LIBRARY ${name}.dll\nEXPORTS")
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # MinGW drops the leading underscore of a decorated name: the alias puts it back. The linker's import library then
    # has the names with one underscore more than compilers ask for: its place takes one whose symbols are the
    # compilers' names.
    nfx_write_exports("${functions}" "${exports}" "${head}" "_\\1@\\2=\\1@\\2" "")
    set(imports "${CMAKE_CURRENT_BINARY_DIR}/imports.def")
    nfx_write_exports("${functions}" "${imports}" "${head}" "\\1@\\2 == _\\1@\\2" "")
    set(machine x86)
    set(exported "_\\1@\\2")
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_DLLTOOL} --input-def "${imports}" --output-lib $<TARGET_LINKER_FILE:${target}>
      VERBATIM)
  else()
    # 64-bit Windows knows one calling convention and does not decorate names.
    nfx_write_exports("${functions}" "${exports}" "${head}" "\\1" "")
    set(machine x64)
    set(exported "\\1")
  endif()
  target_sources(${target} PRIVATE "${exports}")

  # Microsoft's linker refuses the objects in MinGW's import library where it makes tables of exception handlers, as it
  # does for 32-bit programs unless told otherwise (/safeseh).
  find_program(NFX_LLD_LINK lld-link REQUIRED)
  set(functions_of_dll "${CMAKE_CURRENT_BINARY_DIR}/dll.def")
  nfx_write_exports("${functions}" "${functions_of_dll}" "${head}" "${exported}" "")
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND "${NFX_LLD_LINK}" "/def:${functions_of_dll}" /machine:${machine}
      "/out:$<TARGET_LINKER_FILE_DIR:${target}>/${name}.lib"
    VERBATIM)
endfunction()
