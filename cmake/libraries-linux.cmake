# The libraries of the distribution: the picture codecs as the target qel_codecs, and what the host needs as
# CLI11::CLI11 and SQLite::SQLite3.
find_package(PkgConfig REQUIRED)
pkg_check_modules(TURBOJPEG REQUIRED IMPORTED_TARGET libturbojpeg)
find_package(GIF REQUIRED)
find_path(STB_INCLUDE_DIR stb/stb_image_resize.h REQUIRED)
add_library(qel_codecs INTERFACE)
target_link_libraries(qel_codecs INTERFACE PkgConfig::TURBOJPEG GIF::GIF)
find_package(CLI11 REQUIRED)
find_package(SQLite3 REQUIRED)
