# cli11: the header-only command line parser of the programs.

add_library(cli11 INTERFACE)
find_path(NFX_CLI11_INCLUDE_DIR CLI/CLI.hpp PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)

if(CMAKE_CROSSCOMPILING)
  # The host's include folder holds the host's C library too, so the cross compiler gets a folder with CLI alone.
  set(cli11_include_dir "${PROJECT_BINARY_DIR}/third-party/cli11")
  file(MAKE_DIRECTORY "${cli11_include_dir}")
  file(CREATE_LINK "${NFX_CLI11_INCLUDE_DIR}/CLI" "${cli11_include_dir}/CLI" SYMBOLIC)
  target_include_directories(cli11 SYSTEM INTERFACE "${cli11_include_dir}")
endif()
