# Read by cpack before it makes the packages. Their files have the time of the changelog's last entry, or of
# SOURCE_DATE_EPOCH if that is set, and their file names are written as UTF-8 in any locale.
if(NOT CPACK_GENERATOR MATCHES "^(DEB|NSIS|ZIP)$")
  return()
endif()
set(ENV{LC_ALL} C.UTF-8)
set(changelog "${CPACK_QEL_SOURCES}/changelog")
execute_process(COMMAND dpkg-parsechangelog -l "${changelog}" -S Version
  OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(CPACK_GENERATOR STREQUAL "DEB" AND NOT version STREQUAL CPACK_PACKAGE_VERSION)
  message(FATAL_ERROR "${changelog} ends with version ${version}, but this is ${CPACK_PACKAGE_VERSION}.")
endif()
if("$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
  execute_process(COMMAND dpkg-parsechangelog -l "${changelog}" -S Timestamp
    OUTPUT_VARIABLE seconds OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{SOURCE_DATE_EPOCH} "${seconds}")
endif()
