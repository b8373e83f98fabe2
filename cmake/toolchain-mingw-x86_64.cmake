# 64-bit Windows with MinGW-w64; its programs run under Wine.

set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(nfx_mingw x86_64-w64-mingw32)
include("${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw.cmake")
