# What makes a fault in memory harder to use, in every build that no sanitizer instruments: third-party sources included.
# The position-independent code that the top CMakeLists.txt asks for lets the system choose where all of it lies.
if(NFX_SANITIZE)
  return()
endif()

include(CheckCXXCompilerFlag)
include(CheckPIESupported)

add_compile_options(-fstack-protector-strong)
# Checking needs the optimizer, and the C library says so by a warning.
add_compile_options($<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)

if(WIN32)
  # The linker has to be told of the protector, too: it then takes the functions that both checks call from libssp, the
  # archive of which -static chooses.
  add_link_options(-fstack-protector-strong -Wl,--dynamicbase,--nxcompat)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    add_link_options(-Wl,--high-entropy-va)
  endif()
  return()
endif()

check_pie_supported()
add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
# Functions that are called by address begin with a mark for it. The linker marks a whole file as checkable only when
# the C library's own start code is, which Debian 12's is not.
check_cxx_compiler_flag(-fcf-protection=full NFX_HAS_CF_PROTECTION)
if(NFX_HAS_CF_PROTECTION)
  add_compile_options(-fcf-protection=full)
endif()
