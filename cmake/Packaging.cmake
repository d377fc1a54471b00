# The Debian package of the Linux desktop program (cpack -G DEB, see scripts/package.sh): the
# programs, string tables, fan service, desktop entry, icons and AppStream data. Configure with
# CMAKE_INSTALL_PREFIX=/usr (the "package" preset does) so the unit's ExecStart names the
# installed path.
if(APPLE)
  return()
endif()

install(FILES ${PROJECT_SOURCE_DIR}/packaging/linux/quillmark.desktop DESTINATION share/applications)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/linux/com.quillmark.Quillmark.metainfo.xml DESTINATION share/metainfo)
# Debian wants the copyright and a compressed changelog in the package's doc folder.
set(QM_DEB_CHANGELOG ${CMAKE_BINARY_DIR}/changelog.gz)
add_custom_command(OUTPUT ${QM_DEB_CHANGELOG}
                   COMMAND gzip -9n -c ${PROJECT_SOURCE_DIR}/packaging/linux/deb/changelog > ${QM_DEB_CHANGELOG}
                   DEPENDS ${PROJECT_SOURCE_DIR}/packaging/linux/deb/changelog)
add_custom_target(quillmark_changelog ALL DEPENDS ${QM_DEB_CHANGELOG})
set(QM_MAN_PAGE ${CMAKE_BINARY_DIR}/quillmark.1.gz)
add_custom_command(OUTPUT ${QM_MAN_PAGE}
                   COMMAND gzip -9n -c ${PROJECT_SOURCE_DIR}/packaging/linux/quillmark.1 > ${QM_MAN_PAGE}
                   DEPENDS ${PROJECT_SOURCE_DIR}/packaging/linux/quillmark.1)
add_custom_target(quillmark_man_page ALL DEPENDS ${QM_MAN_PAGE})
install(FILES ${QM_MAN_PAGE} DESTINATION share/man/man1)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/linux/deb/copyright ${QM_DEB_CHANGELOG} DESTINATION share/doc/quillmark)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillmark)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The Quillmark developers")
set(CPACK_PACKAGE_CONTACT "The Quillmark developers <quillmark@quillmark.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "system monitor in the panel")
# CPack puts the summary on the first line and indents this below it.
set(CPACK_PACKAGE_DESCRIPTION
    "Quillmark shows CPU and memory use in the panel as an icon or a live text and
opens an overview of CPU, memory, network, disk, temperatures, fans, battery
and the busiest processes on a click. It pauses and ends applications, warns
when the machine stays busy or hot, and can keep a laptop cool through its fan
service. It also prints its figures for terminals and status bars.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The shared libraries the binaries link decide the dependencies (dpkg-shlibdeps).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# A tray host and a notification server are the desktop's; the font covers every panel text.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-core | fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gnome-shell-extension-appindicator")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/linux/deb/postinst
    ${PROJECT_SOURCE_DIR}/packaging/linux/deb/prerm
    ${PROJECT_SOURCE_DIR}/packaging/linux/deb/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
include(CPack)
