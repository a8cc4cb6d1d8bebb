# The Debian packages: cpack in the build folder makes one for each component of the installation.
set(sources "${CMAKE_CURRENT_LIST_DIR}/package")
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime window development)
set(CPACK_PACKAGE_NAME tesselwind)
set(CPACK_PACKAGE_CONTACT "The Tesselwind authors <authors@tesselwind.invalid>")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${QEL_STAGE}") # the folder of libqelcom, which is in no installed package
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Makes the packages reproducible, and adds what only a Debian package has.
set(CPACK_PROJECT_CONFIG_FILE "${sources}/environment.cmake")
set(CPACK_PRE_BUILD_SCRIPTS "${sources}/documents.cmake")
set(CPACK_QEL_SOURCES "${sources}")
set(CPACK_QEL_DOCUMENTS "${CMAKE_INSTALL_DATAROOTDIR}/doc")
set(CPACK_QEL_MANUALS "${CMAKE_INSTALL_MANDIR}")

# CPack would add scripts that call ldconfig, although a trigger does that. It omits them if we name scripts of our own,
# even if they do not exist, as here; it then warns that it does not find them.
set(control none/postinst none/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${control})
configure_file("${sources}/shlibs.in" "${CMAKE_BINARY_DIR}/installed/shlibs" @ONLY)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${control} "${sources}/triggers" "${CMAKE_BINARY_DIR}/installed/shlibs")

set(version "(= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME tesselwind)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION web)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "tesselwind-window ${version}")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
"page plug-in that lets a graphic drift over a page, with a tune
The component for desktop web-site builders, with its library of motifs and
tunes, and qelhost, a small site builder. The settings dialog is in the package
tesselwind-window; building pages needs no display and no toolkit.")

# What the windows also work without: the synthesiser with its instruments, the font for which the dialog is laid out,
# and what opens the help.
set(CPACK_DEBIAN_WINDOW_PACKAGE_NAME tesselwind-window)
set(CPACK_DEBIAN_WINDOW_PACKAGE_SECTION web)
set(CPACK_DEBIAN_WINDOW_PACKAGE_DEPENDS "tesselwind ${version}")
set(CPACK_DEBIAN_WINDOW_PACKAGE_RECOMMENDS "libfluidsynth3, timgm6mb-soundfont, fonts-dejavu-extra, xdg-utils")
set(CPACK_DEBIAN_WINDOW_DESCRIPTION
"page plug-in that lets a graphic drift over a page, settings dialog
The dialog in which an author chooses motif, tune, link and period of a module,
with a preview and with sound, and the window in which qelhost offers the links
of a site.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME tesselwind-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "tesselwind ${version}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"page plug-in that lets a graphic drift over a page, headers
What a program is built with that uses the component: the headers for C and
C++, the link to libqelcom, and its descriptions for pkg-config and CMake.")
include(CPack)
