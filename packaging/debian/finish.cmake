# CPack runs this on the staged files before it packs them. It adds what only Debian asks for: the
# copyright, and a manual page and a change log that are compressed.

set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(documents ${share}/doc/quillmark-mcp)
file(COPY ${CPACK_QUILLMARK_COPYRIGHT} ${CPACK_QUILLMARK_CHANGELOG} DESTINATION ${documents}
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
execute_process(
  COMMAND gzip -9n ${documents}/changelog ${share}/man/man1/quillmark-mcp.1
  COMMAND_ERROR_IS_FATAL ANY)
