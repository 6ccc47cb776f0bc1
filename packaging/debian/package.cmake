# The .deb: what it says about itself. finish.cmake adds the files that only a .deb has.
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
if(NOT QUILLMARK_HOMEPAGE MATCHES "\\.invalid/")
  set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${QUILLMARK_HOMEPAGE})
endif()
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"A Model Context Protocol server that an AI agent's host starts and talks to
over standard input and output. It relays every tool call to the Quillmark
desktop application on the same machine, which holds the user's cloud drives.

The application itself exists for macOS only. On this system the server
is for development and testing, with a stand-in for the application.")
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/finish.cmake)
set(CPACK_QUILLMARK_COPYRIGHT ${CMAKE_CURRENT_SOURCE_DIR}/debian/copyright)
set(CPACK_QUILLMARK_CHANGELOG ${CMAKE_CURRENT_BINARY_DIR}/debian/changelog)
