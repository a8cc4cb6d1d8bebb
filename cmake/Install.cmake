# Where things lie once installed, and the package. PREFIX/lib/qel is the stage folder as it stands, without the headers;
# what stands there is found by the component's own path, so that PREFIX can be any folder, and be moved.
set(documents share/doc/tesselwind)

install(TARGETS QelPluginAnimation QelPluginAnimationWindow qelcom qelhost qelhostWindow
        LIBRARY DESTINATION ${QEL_FOLDER} RUNTIME DESTINATION ${QEL_FOLDER})

file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/installed")
file(CREATE_LINK "../${QEL_FOLDER}/qelhost" "${CMAKE_BINARY_DIR}/installed/qelhost" SYMBOLIC)
install(FILES "${CMAKE_BINARY_DIR}/installed/qelhost" DESTINATION bin)

# The class files, in the form that qelcom.h tells: whoever has PREFIX/share among the data folders needs no registering.
function(qel_class identifier name)
  set(file "${CMAKE_BINARY_DIR}/installed/{${identifier}}.class")
  file(CONFIGURE OUTPUT "${file}" CONTENT "ProgID=${name}\nLibrary=../../../${QEL_FOLDER}/QelPluginAnimation.so\n")
  install(FILES "${file}" DESTINATION share/qel/classes)
endfunction()
qel_class(4FCC59CA-C869-4963-A843-14D7C29AFA23 QelPluginAnimation.Main)
qel_class(AC34163F-A9F3-4932-A75F-284E50AD181B QelPluginAnimation.classStringSort)

# As in the source folder, so that the links of the README hold.
install(FILES README.md LICENSE THIRD-PARTY-NOTICES.md DESTINATION ${documents})
install(FILES designs/LICENSE DESTINATION ${documents}/designs)
install(DIRECTORY docs DESTINATION ${documents})
install(FILES LICENSE DESTINATION ${documents} RENAME copyright) # where Debian looks for it

# The Debian package: cpack in the build folder.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tesselwind)
set(CPACK_PACKAGE_CONTACT "The Tesselwind authors <authors@tesselwind.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "page plug-in that lets a graphic drift over a page, with a tune")
set(CPACK_PACKAGE_DESCRIPTION
    "The component for desktop web-site builders, with its library of motifs\nand tunes, and qelhost, a small site builder.")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION web)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${QEL_STAGE}") # where libqelcom.so stands, which no package has
# What the windows do without: the synthesiser with its instruments, the toolkit's own texts in Spanish, the font that the
# dialog is laid out for, and what opens the help.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "libfluidsynth3, timgm6mb-soundfont, qt6-translations-l10n, fonts-dejavu-extra, xdg-utils")
# CPack would add scripts that call ldconfig, which does not look into this folder, and a removal would leave one behind.
# Scripts of our own keep it from that, also where, as here, there are none; it warns that it does not find them.
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA none/postinst none/postrm)
include(CPack)
