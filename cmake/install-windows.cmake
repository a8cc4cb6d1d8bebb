# What cmake --install installs on Windows: the stage folder, which contains everything that runs, as the folder of its
# word size. So the files of both word sizes fit into one folder.
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(QEL_INSTALLED_FOLDER x64)
else()
  set(QEL_INSTALLED_FOLDER x86)
endif()
install(DIRECTORY "${QEL_STAGE}/" DESTINATION ${QEL_INSTALLED_FOLDER})
