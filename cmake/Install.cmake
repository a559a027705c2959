# What `cmake --install` puts where a desktop looks for it.

set(application_id app.snaplift.Snaplift)
set(resources "${PROJECT_SOURCE_DIR}/resources")

install(TARGETS snaplift-cli)
install(FILES "${PROJECT_SOURCE_DIR}/man/snaplift-cli.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
set(completion "${resources}/completions/snaplift-cli")
install(FILES "${completion}.bash" RENAME snaplift-cli
  DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
install(FILES "${completion}.zsh" RENAME _snaplift-cli
  DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
install(FILES "${completion}.fish" DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
  RENAME copyright)

if(SNAPLIFT_GUI)
  install(TARGETS snaplift)
  install(TARGETS snaplift-picture-decoder DESTINATION "${CMAKE_INSTALL_LIBEXECDIR}/snaplift")
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
