# Run by CPack over the files of the Debian package: gives them the names and the compression that
# Debian asks for, and adds what only Debian wants.

set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(documents ${share}/doc/kirvo)

file(RENAME ${documents}/LICENSE ${documents}/copyright)

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${documents}/changelog
     "kirvo (${CPACK_PACKAGE_VERSION}) stable; urgency=medium\n\n"
     "  * Release ${CPACK_PACKAGE_VERSION}.\n\n"
     " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")

file(GLOB pages ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9n ${documents}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)

file(MAKE_DIRECTORY ${share}/lintian/overrides)
file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/lintian-overrides ${share}/lintian/overrides/kirvo)
