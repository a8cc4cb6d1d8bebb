# The libraries that tools/build-windows-libraries makes: the picture codecs as the target qel_codecs, and what the host
# needs as CLI11::CLI11 and SQLite::SQLite3.
execute_process(COMMAND "${PROJECT_SOURCE_DIR}/tools/build-windows-libraries" "${CMAKE_SYSTEM_PROCESSOR}"
                OUTPUT_VARIABLE libraries OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
function(qel_library name)
  add_library(${name} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${name} INTERFACE "${libraries}/include")
  foreach(file IN LISTS ARGN)
    target_link_libraries(${name} INTERFACE "${libraries}/lib/${file}")
  endforeach()
endfunction()
qel_library(qel_codecs libturbojpeg.a libgif.a)
qel_library(CLI11::CLI11)
qel_library(SQLite::SQLite3 libsqlite3.a)
