# nfx_gtest: GoogleTest with its main function, built from Debian's source package with the flags of the preset, so
# that sanitizers and the C++ runtime agree with the code under test.

find_path(NFX_GOOGLETEST_DIR googletest/src/gtest-all.cc PATHS /usr/src/googletest
  NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)

add_library(nfx_gtest STATIC
  "${NFX_GOOGLETEST_DIR}/googletest/src/gtest-all.cc"
  "${NFX_GOOGLETEST_DIR}/googletest/src/gtest_main.cc")
target_include_directories(nfx_gtest
  SYSTEM PUBLIC "${NFX_GOOGLETEST_DIR}/googletest/include"
  PRIVATE "${NFX_GOOGLETEST_DIR}/googletest")
set_target_properties(nfx_gtest PROPERTIES EXCLUDE_FROM_ALL ON CXX_EXTENSIONS ON)
if(NOT WIN32)
  find_package(Threads REQUIRED)
  target_link_libraries(nfx_gtest PUBLIC Threads::Threads)
endif()
