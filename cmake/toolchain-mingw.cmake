# What both toolchains of MinGW-w64 share; they set nfx_mingw, the prefix of the compilers, first.

set(CMAKE_SYSTEM_NAME Windows)

set(CMAKE_C_COMPILER ${nfx_mingw}-gcc-posix)
set(CMAKE_CXX_COMPILER ${nfx_mingw}-g++-posix)
set(CMAKE_RC_COMPILER ${nfx_mingw}-windres)

set(CMAKE_C_FLAGS_INIT "-D_WIN32_WINNT=0x0601")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")

# Programs and the library stand alone: no libgcc, libstdc++ or winpthread DLL beside them.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

set(CMAKE_FIND_ROOT_PATH /usr/${nfx_mingw})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/wine/run-wine")
