# 32-bit Windows with MinGW-w64; its programs run under Wine.

set(CMAKE_SYSTEM_PROCESSOR i686)
set(nfx_mingw i686-w64-mingw32)
include("${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw.cmake")

# Floating point as on the other builds: SSE2 instead of the x87's 80 bits. Callers, the system's thread start among
# them, align the stack to 4 bytes only, so each function that needs more realigns it.
string(APPEND CMAKE_C_FLAGS_INIT " -msse2 -mfpmath=sse -mstackrealign")
string(APPEND CMAKE_CXX_FLAGS_INIT " -msse2 -mfpmath=sse -mstackrealign")
