# nfx_add_locale_tests(<test> [FILTER <pattern>] [LABELS <label>...])
#
# Registers a test program again, once for each of two locales in which a host process may run: there numbers have a
# decimal comma, and in Turkish "I" and "i" are not the two cases of one letter. The program must have
# tests/support/HostLocale.cpp among its sources.
#
# FILTER  the cases to run; all without it

if(WIN32)
  set(nfx_locales "de_DE=German_Germany.1252" "tr_TR=Turkish_Turkey.1254")
else()
  set(nfx_locales "de_DE=de_DE.ISO-8859-1" "tr_TR=tr_TR.ISO-8859-9")
  set(nfx_locale_folder "${PROJECT_BINARY_DIR}/locales")
  foreach(locale IN LISTS nfx_locales)
    string(REGEX MATCH "=([a-zA-Z_]+)\\.(.*)$" ignored "${locale}")
    set(name "${CMAKE_MATCH_1}.${CMAKE_MATCH_2}")
    if(NOT EXISTS "${nfx_locale_folder}/${name}/LC_NUMERIC")
      file(MAKE_DIRECTORY "${nfx_locale_folder}")
      execute_process(
        COMMAND localedef -i ${CMAKE_MATCH_1} -f ${CMAKE_MATCH_2} "${nfx_locale_folder}/${name}"
        COMMAND_ERROR_IS_FATAL ANY)
    endif()
  endforeach()
endif()

function(nfx_add_locale_tests test)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "FILTER" "LABELS")
  foreach(locale IN LISTS nfx_locales)
    string(REPLACE "=" ";" locale "${locale}")
    list(GET locale 0 suffix)
    list(GET locale 1 name)
    nfx_register_test(${test}-${suffix} ${test} "${arg_FILTER}" TIMEOUT 120 LABELS ${arg_LABELS})
    set_property(TEST ${test}-${suffix} APPEND PROPERTY ENVIRONMENT TEST_LOCALE=${name})
    if(nfx_locale_folder)
      set_property(TEST ${test}-${suffix} APPEND PROPERTY ENVIRONMENT LOCPATH=${nfx_locale_folder})
    endif()
  endforeach()
endfunction()
