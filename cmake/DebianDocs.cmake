# Run by CPack over the files to be packed: Debian wants the man pages and a changelog compressed.

find_program(GZIP gzip REQUIRED)
set(share "${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}/share")
set(changelog "${share}/doc/${CPACK_PACKAGE_NAME}/changelog")
file(COPY_FILE "${CMAKE_CURRENT_LIST_DIR}/../CHANGELOG.md" "${changelog}")
file(GLOB pages "${share}/man/man1/*.1")
# Without names and times inside, so that the same files make the same package.
execute_process(COMMAND "${GZIP}" -9 --no-name ${pages} "${changelog}" COMMAND_ERROR_IS_FATAL ANY)
