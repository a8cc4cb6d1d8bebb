# What cmake --install installs, in three components: `runtime` for building pages, `window` for windows and sound,
# `development` for building other programs. PREFIX/LIBDIR/qel is the stage folder, without the headers and without
# libqelcom, which is in LIBDIR. All files find each other by relative paths: PREFIX can be any folder, and can be
# moved.
include(CMakePackageConfigHelpers)
set(documents "${CMAKE_INSTALL_DATAROOTDIR}/doc/tesselwind")
set(headers "${CMAKE_INSTALL_INCLUDEDIR}/qel")
set(made "${CMAKE_BINARY_DIR}/installed") # files that are only made for the installation
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME runtime)

# The folder of the installation TO, relative to its folder FROM. Both may be absolute, as CMAKE_INSTALL_<DIR> may be.
function(qel_relative result from to)
  cmake_path(ABSOLUTE_PATH from BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
  cmake_path(ABSOLUTE_PATH to BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
  cmake_path(RELATIVE_PATH to BASE_DIRECTORY "${from}")
  set(${result} "${to}" PARENT_SCOPE)
endfunction()

target_include_directories(qelcom INTERFACE "$<INSTALL_INTERFACE:${headers}>")
set_target_properties(qelcom PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
# The same files run in the stage folder, beside libqelcom, and after the installation.
set_target_properties(QelPluginAnimation qelhost PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN;$ORIGIN/..")
install(TARGETS qelcom EXPORT Tesselwind
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_COMPONENT development)
install(TARGETS QelPluginAnimation qelhost LIBRARY DESTINATION ${QEL_FOLDER} RUNTIME DESTINATION ${QEL_FOLDER})
install(TARGETS QelPluginAnimationWindow qelhostWindow LIBRARY DESTINATION ${QEL_FOLDER} COMPONENT window)
install(DIRECTORY designs/QelPluginAnimationDesigns help DESTINATION ${QEL_FOLDER})
install(FILES designs/QelPluginAnimationLogo.bmp designs/QelPluginAnimationPreview.bmp DESTINATION ${QEL_FOLDER})

qel_relative(folder "${CMAKE_INSTALL_BINDIR}" "${QEL_FOLDER}")
file(MAKE_DIRECTORY "${made}")
file(CREATE_LINK "${folder}/qelhost" "${made}/qelhost" SYMBOLIC)
install(FILES "${made}/qelhost" DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES docs/qelhost.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# The class files, in the form that qelcom.h documents: users with PREFIX/share among their data folders need not
# register.
set(classes "${CMAKE_INSTALL_DATADIR}/qel/classes")
qel_relative(folder "${classes}" "${QEL_FOLDER}")
function(qel_class identifier name)
  set(file "${made}/{${identifier}}.class")
  file(CONFIGURE OUTPUT "${file}" CONTENT "ProgID=${name}\nLibrary=${folder}/QelPluginAnimation.so\n")
  install(FILES "${file}" DESTINATION ${classes})
endfunction()
qel_class(4FCC59CA-C869-4963-A843-14D7C29AFA23 QelPluginAnimation.Main)
qel_class(AC34163F-A9F3-4932-A75F-284E50AD181B QelPluginAnimation.classStringSort)

# In the same folders as in the sources, so that the links of the README work.
install(FILES README.md LICENSE THIRD-PARTY-NOTICES.md DESTINATION ${documents})
install(FILES designs/LICENSE DESTINATION ${documents}/designs)
install(DIRECTORY docs DESTINATION ${documents} PATTERN qelhost.1 EXCLUDE)

# For other programs: the headers, tesselwind.pc for pkg-config, and find_package(Tesselwind).
install(FILES src/com/qelcom.h src/com/QelHelperInterfaces.h DESTINATION ${headers} COMPONENT development)
set(configurations "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
qel_relative(prefix "${configurations}" "${CMAKE_INSTALL_PREFIX}")
qel_relative(libdir "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_LIBDIR}")
qel_relative(includedir "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_INCLUDEDIR}")
configure_file(cmake/tesselwind.pc.in "${made}/tesselwind.pc" @ONLY)
install(FILES "${made}/tesselwind.pc" DESTINATION ${configurations} COMPONENT development)
set(configurations "${CMAKE_INSTALL_LIBDIR}/cmake/Tesselwind")
install(EXPORT Tesselwind DESTINATION ${configurations} NAMESPACE Tesselwind:: FILE TesselwindConfig.cmake
        COMPONENT development)
write_basic_package_version_file("${made}/TesselwindConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${made}/TesselwindConfigVersion.cmake" DESTINATION ${configurations} COMPONENT development)

# cmake -P uninstall.cmake in the build folder removes what the last cmake --install from there has installed.
configure_file(cmake/uninstall.cmake "${CMAKE_BINARY_DIR}/uninstall.cmake" COPYONLY)
