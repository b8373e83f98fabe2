# nfx_add_header_library(<target> <folder> <header>): a library of Debian's that is nothing but headers, in a folder of
# /usr/include.
function(nfx_add_header_library target folder header)
  find_path(${target}_include_dir ${folder}/${header} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  add_library(${target} INTERFACE)
  if(CMAKE_CROSSCOMPILING)
    # The host's include folder holds the host's C library too, so the cross compiler gets a folder with these alone.
    set(own_folder "${PROJECT_BINARY_DIR}/third-party/${target}")
    file(MAKE_DIRECTORY "${own_folder}")
    file(CREATE_LINK "${${target}_include_dir}/${folder}" "${own_folder}/${folder}" SYMBOLIC)
    target_include_directories(${target} SYSTEM INTERFACE "${own_folder}")
  endif()
endfunction()

# The command line parser of the programs.
nfx_add_header_library(cli11 CLI CLI.hpp)

# The reader of the JSON that users and host programs write; what devices say is read by the project's own.
nfx_add_header_library(nlohmann-json nlohmann json.hpp)
