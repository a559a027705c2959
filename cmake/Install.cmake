# What `cmake --install` puts where a desktop looks for it.

set(application_id app.snaplift.Snaplift)
set(resources "${PROJECT_SOURCE_DIR}/resources")

# install_man_page(NAME): with the version and its day in the foot line.
function(install_man_page name)
  set(page "${PROJECT_BINARY_DIR}/man/${name}.1")
  configure_file("${PROJECT_SOURCE_DIR}/man/${name}.1.in" "${page}" @ONLY)
  install(FILES "${page}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
endfunction()

install(TARGETS snaplift-cli)
install_man_page(snaplift-cli)
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
  get_target_property(decoders decoderprograms MANUALLY_ADDED_DEPENDENCIES)
  install(TARGETS ${decoders} DESTINATION "${CMAKE_INSTALL_LIBEXECDIR}/snaplift")
  install_man_page(snaplift)
  install(FILES "${resources}/${application_id}.desktop"
    "${resources}/zz.snaplift.Snaplift.Folders.desktop"
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
