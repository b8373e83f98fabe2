# NFX_SANITIZE=address builds everything, third-party sources included, with AddressSanitizer, LeakSanitizer and
# UndefinedBehaviorSanitizer and finds objects that are adopted twice; NFX_SANITIZE=fuzzer does so too, and lets fuzzers see which code an input reaches;
# NFX_SANITIZE=thread builds with ThreadSanitizer. The first finding ends the program.

set(NFX_SANITIZE "" CACHE STRING "Empty, address, fuzzer or thread")
set_property(CACHE NFX_SANITIZE PROPERTY STRINGS "" address fuzzer thread)

if(NFX_SANITIZE STREQUAL "address")
  set(nfx_sanitizers address,undefined,float-cast-overflow)
  add_compile_definitions(NFX_CHECK_ADOPTION) # its lock would hide races from the thread sanitizer
elseif(NFX_SANITIZE STREQUAL "fuzzer")
  set(nfx_sanitizers address,undefined,float-cast-overflow,fuzzer-no-link)
elseif(NFX_SANITIZE STREQUAL "thread")
  set(nfx_sanitizers thread)
elseif(NOT NFX_SANITIZE STREQUAL "")
  message(FATAL_ERROR "NFX_SANITIZE is \"${NFX_SANITIZE}\": must be empty, address, fuzzer or thread")
endif()

if(nfx_sanitizers)
  add_compile_options(-fsanitize=${nfx_sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${nfx_sanitizers})
endif()
