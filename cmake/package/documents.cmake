# cpack runs this when the files of the packages are in place. It adds the changelog and the copyright file to each
# package, and compresses manual pages.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER "${component}" name)
  set(package "${CPACK_DEBIAN_${name}_PACKAGE_NAME}")
  set(root "${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}")
  set(folder "${root}/${CPACK_QEL_DOCUMENTS}/${package}")
  file(MAKE_DIRECTORY "${folder}")
  file(COPY "${CPACK_QEL_SOURCES}/copyright" "${CPACK_QEL_SOURCES}/changelog" DESTINATION "${folder}"
       FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  file(GLOB_RECURSE manuals "${root}/${CPACK_QEL_MANUALS}/*.[1-8]")
  execute_process(COMMAND gzip -9n "${folder}/changelog" ${manuals} COMMAND_ERROR_IS_FATAL ANY)
  # The folders and files made so far have the permissions of the user who runs cpack.
  execute_process(COMMAND chmod -R go=u-w "${root}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
