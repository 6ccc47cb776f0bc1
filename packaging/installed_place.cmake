# Part of the installation. The documents name the program and README in /usr/local; here they get
# the places where these are. CPack installs into a folder of its own, but the .deb is for /usr.
set(place ${CMAKE_INSTALL_PREFIX})
if(place MATCHES "/_CPack_Packages/.*(/usr)$")
  set(place ${CMAKE_MATCH_1})
endif()

set(installed "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}")
file(GLOB_RECURSE documents
  "${installed}/${document_folder}/*.md" "${installed}/${manual_folder}/quillmark-mcp.1")
foreach(document IN LISTS documents)
  file(READ "${document}" text)
  foreach(installed_file bin/quillmark-mcp share/doc/quillmark-mcp/README.md)
    string(REPLACE "/usr/local/${installed_file}" "${place}/${installed_file}" text "${text}")
  endforeach()
  file(WRITE "${document}" "${text}")
endforeach()
