# Part of the installation. The documents name the program in /usr/local; here they get the place
# where it really is. CPack installs into a folder of its own, but the .deb is for /usr.
set(place ${CMAKE_INSTALL_PREFIX})
if(place MATCHES "/_CPack_Packages/.*(/usr)$")
  set(place ${CMAKE_MATCH_1})
endif()

set(installed "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}")
file(GLOB_RECURSE documents
  "${installed}/${document_folder}/*.md" "${installed}/${manual_folder}/quillmark-mcp.1")
foreach(document IN LISTS documents)
  file(READ "${document}" text)
  string(REPLACE "/usr/local/bin/quillmark-mcp" "${place}/bin/quillmark-mcp" text "${text}")
  file(WRITE "${document}" "${text}")
endforeach()
