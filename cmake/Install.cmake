# Installs PerchFtp like a desktop application and packages it as a .deb (cpack -G DEB) that
# lintian finds nothing to warn about (tests/package/).
# Documentation goes under the package's name, not the project's.
set(CMAKE_INSTALL_DOCDIR share/doc/perchftp)
include(GNUInstallDirs)

set(PERCHFTP_APP_ID org.perchftp.PerchFtp)
set(PERCHFTP_ICON_SOURCE_DIR ${CMAKE_SOURCE_DIR}/resources/icons/app)
set(PERCHFTP_DEBIAN_SOURCE_DIR ${CMAKE_SOURCE_DIR}/resources/debian)
set(PERCHFTP_DOCS_BINARY_DIR ${CMAKE_BINARY_DIR}/docs)
# Whatever the umask of the one who builds, the package's folders are rwxr-xr-x.
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# The installed program binds every symbol at start and keeps its relocations read-only.
target_link_options(perchftp PRIVATE LINKER:-z,relro LINKER:-z,now)
install(TARGETS perchftp RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# A stripped install also loses the compiler's version notes, as Debian's own packages do.
if(CMAKE_OBJCOPY)
  install(CODE "
    if(CMAKE_INSTALL_DO_STRIP)
      execute_process(COMMAND \"${CMAKE_OBJCOPY}\" --remove-section=.comment
        \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/perchftp\")
    endif()")
endif()

# The manual page and the changelog, compressed as Debian wants them: gzip -9 without a time stamp.
configure_file(${CMAKE_SOURCE_DIR}/resources/man/perchftp.1.in ${PERCHFTP_DOCS_BINARY_DIR}/perchftp.1 @ONLY)
configure_file(${PERCHFTP_DEBIAN_SOURCE_DIR}/changelog ${PERCHFTP_DOCS_BINARY_DIR}/changelog COPYONLY)
add_custom_command(
  OUTPUT ${PERCHFTP_DOCS_BINARY_DIR}/perchftp.1.gz ${PERCHFTP_DOCS_BINARY_DIR}/changelog.gz
  COMMAND gzip -9 -n -k -f perchftp.1 changelog
  DEPENDS ${PERCHFTP_DOCS_BINARY_DIR}/perchftp.1 ${PERCHFTP_DOCS_BINARY_DIR}/changelog
  WORKING_DIRECTORY ${PERCHFTP_DOCS_BINARY_DIR}
  VERBATIM)
add_custom_target(perchftp_docs ALL
  DEPENDS ${PERCHFTP_DOCS_BINARY_DIR}/perchftp.1.gz ${PERCHFTP_DOCS_BINARY_DIR}/changelog.gz)

# The machine-readable copyright file carries the licence text the program shows at its first
# start: each line indented by one space, an empty line written as " .".
file(STRINGS ${CMAKE_SOURCE_DIR}/resources/licence.txt PERCHFTP_LICENCE_LINES)
set(PERCHFTP_LICENCE_TEXT "")
foreach(line IN LISTS PERCHFTP_LICENCE_LINES)
  if(line STREQUAL "")
    set(line ".")
  endif()
  string(APPEND PERCHFTP_LICENCE_TEXT " ${line}\n")
endforeach()
string(REGEX REPLACE "\n$" "" PERCHFTP_LICENCE_TEXT "${PERCHFTP_LICENCE_TEXT}")
configure_file(${PERCHFTP_DEBIAN_SOURCE_DIR}/copyright.in ${PERCHFTP_DOCS_BINARY_DIR}/copyright @ONLY)

install(FILES ${PERCHFTP_DOCS_BINARY_DIR}/perchftp.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${PERCHFTP_DOCS_BINARY_DIR}/copyright ${PERCHFTP_DOCS_BINARY_DIR}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DOCDIR})

if(PERCHFTP_BUILD_SHELL)
  install(FILES ${CMAKE_SOURCE_DIR}/resources/desktop/${PERCHFTP_APP_ID}.desktop
          DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${CMAKE_SOURCE_DIR}/resources/desktop/${PERCHFTP_APP_ID}.metainfo.xml
          DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  foreach(size 16 32 64 128 256)
    install(FILES ${PERCHFTP_ICON_SOURCE_DIR}/PerchFTP_${size}x${size}.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
            RENAME ${PERCHFTP_APP_ID}.png)
  endforeach()
  install(FILES ${PERCHFTP_ICON_SOURCE_DIR}/perchftp.svg
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
          RENAME ${PERCHFTP_APP_ID}.svg)
endif()

set(CPACK_PACKAGE_NAME perchftp)
set(CPACK_PACKAGE_VENDOR "The PerchFtp developers")
set(CPACK_PACKAGE_CONTACT "The PerchFtp developers <developers@perchftp.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Desktop client for FTP, FTPS and SFTP file transfers")
# Lines of at most 80 columns, as the control file's extended description wants them.
set(CPACK_PACKAGE_DESCRIPTION [=[
PerchFtp shows a local and a remote folder side by side and moves files
between them over FTP, FTPS and SFTP. Connect through a small form or a
saved connection, then upload, download, rename, delete, create folders
and change permissions.

Every transfer leaves a row in a visible queue with its state and progress,
and saved connections are kept in a local SQLite database.]=])
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The shell reaches the Wayland display through Qt's platform interface, which is not held
# stable across Qt releases: the package asks for the Qt it was built with.
find_package(Qt6 QUIET COMPONENTS Gui)
set(PERCHFTP_QT_ABI "")
if(PERCHFTP_BUILD_SHELL AND Qt6Gui_VERSION)
  set(PERCHFTP_QT_ABI "qt6-base-abi (= ${Qt6Gui_VERSION}), ")
endif()
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "libqt6widgets6 (>= 6.4), libqt6gui6 (>= 6.4), libqt6core6 (>= 6.4), libqt6svg6 (>= 6.4), ${PERCHFTP_QT_ABI}qt6-qpa-plugins, libxcb1, libwayland-client0, libcurl4 (>= 7.88), libsqlite3-0 (>= 3.40), libc6, libstdc++6")
# qt6-wayland lets the program run natively on a Wayland session instead of through XWayland.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, zenity | kdialog, fonts-noto-color-emoji")
include(CPack)
