# nlohmann-json: the header-only reader of the JSON that users and host programs write.

add_library(nlohmann-json INTERFACE)
find_path(NFX_NLOHMANN_INCLUDE_DIR nlohmann/json.hpp PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)

if(CMAKE_CROSSCOMPILING)
  # The host's include folder holds the host's C library too, so the cross compiler gets a folder with nlohmann alone.
  set(nlohmann_include_dir "${PROJECT_BINARY_DIR}/third-party/nlohmann")
  file(MAKE_DIRECTORY "${nlohmann_include_dir}")
  file(CREATE_LINK "${NFX_NLOHMANN_INCLUDE_DIR}/nlohmann" "${nlohmann_include_dir}/nlohmann" SYMBOLIC)
  target_include_directories(nlohmann-json SYSTEM INTERFACE "${nlohmann_include_dir}")
endif()
