# Installs PerchFtp like a desktop application and packages it as a .deb (cpack -G DEB).
include(GNUInstallDirs)

set(PERCHFTP_APP_ID org.perchftp.PerchFtp)
set(PERCHFTP_ICON_SOURCE_DIR ${CMAKE_SOURCE_DIR}/resources/icons/app)

install(TARGETS perchftp RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

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
  install(FILES ${CMAKE_SOURCE_DIR}/resources/licence.txt DESTINATION ${CMAKE_INSTALL_DOCDIR})
  install(FILES ${PERCHFTP_ICON_SOURCE_DIR}/perchftp.svg
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
          RENAME ${PERCHFTP_APP_ID}.svg)
endif()

set(CPACK_PACKAGE_NAME perchftp)
set(CPACK_PACKAGE_VENDOR "The PerchFtp developers")
set(CPACK_PACKAGE_CONTACT "The PerchFtp developers <developers@perchftp.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Desktop client for FTP, FTPS and SFTP file transfers")
set(CPACK_PACKAGE_DESCRIPTION
    "PerchFtp shows a local and a remote folder side by side and moves files between them over FTP, FTPS and SFTP.")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "libqt6widgets6 (>= 6.4), libqt6gui6 (>= 6.4), libqt6core6 (>= 6.4), libqt6svg6 (>= 6.4), qt6-qpa-plugins, libcurl4 (>= 7.88), libsqlite3-0 (>= 3.40), libc6, libstdc++6")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "zenity | kdialog, fonts-noto-color-emoji")
include(CPack)
