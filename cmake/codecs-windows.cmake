# The picture codecs that tools/build-windows-codecs makes, as the target qel_codecs.
execute_process(COMMAND "${PROJECT_SOURCE_DIR}/tools/build-windows-codecs" "${CMAKE_SYSTEM_PROCESSOR}"
                OUTPUT_VARIABLE codecs OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
add_library(qel_codecs INTERFACE)
target_include_directories(qel_codecs SYSTEM INTERFACE "${codecs}/include")
target_link_libraries(qel_codecs INTERFACE "${codecs}/lib/libturbojpeg.a" "${codecs}/lib/libgif.a")
