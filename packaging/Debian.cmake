# What debian-packages needs to know of the project.
set(debian_dir "${CMAKE_CURRENT_BINARY_DIR}/debian")
math(EXPR next_interface "${PROJECT_VERSION_MAJOR} + 1")
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(debian/control.in "${debian_dir}/control" @ONLY)
configure_file(debian/changelog.in "${debian_dir}/changelog" @ONLY)
