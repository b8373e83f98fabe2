# NFX_SANITIZE=address builds everything, third-party sources included, with AddressSanitizer, LeakSanitizer and
# UndefinedBehaviorSanitizer; NFX_SANITIZE=fuzzer does so too, and lets fuzzers see which code an input reaches;
# NFX_SANITIZE=thread builds with ThreadSanitizer. The first finding ends the program.
# All but the last, and debug builds, find objects that are adopted twice.

set(NFX_SANITIZE "" CACHE STRING "Empty, address, fuzzer or thread")
set_property(CACHE NFX_SANITIZE PROPERTY STRINGS "" address fuzzer thread)

if(NFX_SANITIZE STREQUAL "address")
  set(nfx_sanitizers address,undefined,float-cast-overflow)
elseif(NFX_SANITIZE STREQUAL "fuzzer")
  set(nfx_sanitizers address,undefined,float-cast-overflow,fuzzer-no-link)
elseif(NFX_SANITIZE STREQUAL "thread")
  set(nfx_sanitizers thread)
elseif(NOT NFX_SANITIZE STREQUAL "")
  message(FATAL_ERROR "NFX_SANITIZE is \"${NFX_SANITIZE}\": must be empty, address, fuzzer or thread")
endif()

if(NFX_SANITIZE MATCHES "address|fuzzer")
  add_compile_definitions(NFX_CHECK_ADOPTION)
elseif(NOT NFX_SANITIZE) # the lock of the check would hide races from the thread sanitizer
  add_compile_definitions($<$<CONFIG:Debug>:NFX_CHECK_ADOPTION>)
endif()

if(nfx_sanitizers)
  add_compile_options(-fsanitize=${nfx_sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${nfx_sanitizers})
endif()
