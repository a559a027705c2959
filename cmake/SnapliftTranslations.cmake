# The translations in resources/translations, made into resources of a library.

# snaplift_translations(TARGET): as ":/translations/snaplift_de.qm" and so on. Without Qt's
# translation tools the window speaks English, the language of the sources.
function(snaplift_translations target)
  find_program(LRELEASE NAMES lrelease lrelease-qt6
    HINTS "${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS}" "${QT6_INSTALL_PREFIX}/${QT6_INSTALL_LIBEXECS}")
  if(NOT LRELEASE)
    message(STATUS "Qt's lrelease is not there: the window speaks English only")
    return()
  endif()
  file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/resources/translations/*.ts")
  foreach(source ${sources})
    cmake_path(GET source STEM name)
    set(compiled "${CMAKE_CURRENT_BINARY_DIR}/${name}.qm")
    add_custom_command(OUTPUT "${compiled}" DEPENDS "${source}"
      COMMAND "${LRELEASE}" -silent "${source}" -qm "${compiled}" VERBATIM)
    list(APPEND translations "${compiled}")
  endforeach()
  qt_add_resources(${target} translations PREFIX /translations
    BASE "${CMAKE_CURRENT_BINARY_DIR}" FILES ${translations})
endfunction()
