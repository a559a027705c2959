# What `cmake --install` puts where a desktop looks for it, and the Debian package made of that.

set(application_id app.snaplift.Snaplift)
set(resources "${PROJECT_SOURCE_DIR}/resources")

install(TARGETS snaplift-cli)
install(FILES "${PROJECT_SOURCE_DIR}/man/snaplift-cli.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
install(FILES "${resources}/completions/snaplift-cli"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
  RENAME copyright)

if(SNAPLIFT_GUI)
  install(TARGETS snaplift)
  install(FILES "${PROJECT_SOURCE_DIR}/man/snaplift.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
  install(FILES "${resources}/${application_id}.desktop"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
  install(FILES "${resources}/${application_id}.metainfo.xml"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
  set(icons "${CMAKE_INSTALL_DATADIR}/icons/hicolor")
  install(FILES "${resources}/icons/${application_id}.svg" DESTINATION "${icons}/scalable/apps")
  foreach(size 16 22 24 32 48 64 128 256 512)
    install(FILES "${resources}/icons/${application_id}-${size}.png"
      DESTINATION "${icons}/${size}x${size}/apps" RENAME "${application_id}.png")
  endforeach()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME snaplift)
set(CPACK_PACKAGE_CONTACT "Snaplift developers <developers@snaplift.app>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
"Finds the backups of handsets of system versions 1 to 9, shows their photos,
and copies them out whole. A backup is only ever read.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/DebianDocs.cmake")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland")
include(CPack)
