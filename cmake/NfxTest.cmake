# nfx_add_test(NAME <name> SOURCES <file>... LIBRARIES <target>...
#              [LABELS <label>...] [TIMEOUT <seconds>] [LONG <pattern>] [DISCOVERY_PORTS])
#
# Builds the gtest program <name> and registers it with ctest, one entry for the whole program: under Wine each process
# costs a second. Run one case by hand with --gtest_filter.
#
# TIMEOUT          120 without it; three times as much under a sanitizer
# LONG             the cases that match this gtest pattern become an entry of their own, <name>-long, labelled "long":
#                  ctest -LE long leaves them out, and starts them first
# DISCOVERY_PORTS  the program binds the fixed UDP ports or broadcasts, so it gets a network namespace of its own

# How ctest starts a program of this build; empty when it starts it directly.
set(NFX_TEST_LAUNCHER ${CMAKE_CROSSCOMPILING_EMULATOR})

# What goes before that to give the program a network of its own.
set(NFX_TEST_ISOLATED ${PROJECT_SOURCE_DIR}/cmake/isolated)

# The system's own Python, for which scripts/install-dependencies installs modules; one that PATH names first lacks them.
set(NFX_TEST_PYTHON /usr/bin/python3)

# How many times as long as a native build without sanitizers a program may take.
set(NFX_TEST_TIME_SCALE 1)
if(NFX_SANITIZE OR WIN32)
  set(NFX_TEST_TIME_SCALE 8)
endif()

set(NFX_TEST_ENVIRONMENT
  ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1:check_initialization_order=1
  UBSAN_OPTIONS=print_stacktrace=1
  TSAN_OPTIONS=second_deadlock_stack=1)

function(nfx_register_test name program filter)
  cmake_parse_arguments(PARSE_ARGV 3 arg "DISCOVERY_PORTS" "TIMEOUT" "LABELS")

  set(command $<TARGET_FILE:${program}>)
  if(filter)
    list(APPEND command "--gtest_filter=${filter}")
  endif()
  set(launcher ${NFX_TEST_LAUNCHER})
  if(arg_DISCOVERY_PORTS)
    list(PREPEND launcher ${NFX_TEST_ISOLATED})
  endif()
  add_test(NAME ${name} COMMAND ${launcher} ${command})

  if(NFX_SANITIZE)
    math(EXPR arg_TIMEOUT "3 * ${arg_TIMEOUT}")
  endif()
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${arg_TIMEOUT}
    LABELS "${arg_LABELS}"
    ENVIRONMENT "${NFX_TEST_ENVIRONMENT}")
endfunction()

function(nfx_add_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "DISCOVERY_PORTS" "NAME;TIMEOUT;LONG" "SOURCES;LIBRARIES;LABELS")
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "nfx_add_test: unknown arguments: ${arg_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  set(ports "")
  if(arg_DISCOVERY_PORTS)
    set(ports DISCOVERY_PORTS)
  endif()

  add_executable(${arg_NAME} ${arg_SOURCES})
  target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBRARIES} nfx_gtest nfx_warnings)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # GoogleTest's typed and parameterised suites leave the variable part of its macros empty.
    target_compile_options(${arg_NAME} PRIVATE -Wno-gnu-zero-variadic-macro-arguments)
  endif()

  set(filter "")
  if(arg_LONG)
    set(filter "-${arg_LONG}")
    nfx_register_test(${arg_NAME}-long ${arg_NAME} "${arg_LONG}"
      TIMEOUT ${arg_TIMEOUT} LABELS ${arg_LABELS} long ${ports})
    set_tests_properties(${arg_NAME}-long PROPERTIES COST 100)
  endif()
  nfx_register_test(${arg_NAME} ${arg_NAME} "${filter}" TIMEOUT ${arg_TIMEOUT} LABELS ${arg_LABELS} ${ports})
endfunction()
