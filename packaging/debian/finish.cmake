# CPack runs this on the staged files before it packs them: what Debian wants of a package and
# nobody else does. The manual page and the change log are gzip'ed, the copyright stands by them.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(documents ${share}/doc/quillmark-mcp)
file(COPY ${CPACK_QUILLMARK_COPYRIGHT} ${CPACK_QUILLMARK_CHANGELOG} DESTINATION ${documents}
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
execute_process(
  COMMAND gzip -9n ${documents}/changelog ${share}/man/man1/quillmark-mcp.1
  COMMAND_ERROR_IS_FATAL ANY)
