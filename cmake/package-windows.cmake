# The installer and the ZIP for Windows: cpack in the build folder of the preset windows makes both, with the files of
# windows32 too, which have to be built already.
set(sources "${CMAKE_CURRENT_LIST_DIR}/package")
file(STRINGS "${PROJECT_SOURCE_DIR}/src/resources/versionTexts.h" texts REGEX "QEL_(TITLE|COPYRIGHT) ")
string(REGEX MATCH "TITLE \"([^\"]+)\"" found "${texts}")
set(CPACK_PACKAGE_NAME "${CMAKE_MATCH_1}")
string(REGEX MATCH "COPYRIGHT \"([^\"]+[0-9] ([^\"]+))\"" found "${texts}")
set(CPACK_QEL_COPYRIGHT "${CMAKE_MATCH_1}")
set(CPACK_PACKAGE_VENDOR "${CMAKE_MATCH_2}")
set(CPACK_QEL_FILE_VERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.0.${PROJECT_VERSION_PATCH}")
set(CPACK_QEL_ICON "${CMAKE_BINARY_DIR}/src/plugin/windows/100.ico")
set(CPACK_QEL_SOURCES "${sources}")
set(CPACK_GENERATOR NSIS ZIP)
set(CPACK_PACKAGE_FILE_NAME "tesselwind-${PROJECT_VERSION}-windows")
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};${PROJECT_NAME};ALL;/"
                                 "${PROJECT_SOURCE_DIR}/build/windows32;${PROJECT_NAME};ALL;/")
set(CPACK_PROJECT_CONFIG_FILE "${sources}/environment.cmake")
set(CPACK_MODULE_PATH "${sources}") # NSIS.template.in
set(CPACK_NSIS_EXECUTABLE_PRE_ARGUMENTS -INPUTCHARSET UTF8)
include(CPack)
