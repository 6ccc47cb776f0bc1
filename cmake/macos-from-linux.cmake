# A toolchain for Linux that links programs for macOS: clang, a linker and Darwin's headers in one.
# scripts/macos fetches it and sets QUILLMARK_ZIG, its program, and CMAKE_SYSTEM_PROCESSOR, which is
# arm64 or x86_64.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CMAKE_SYSTEM_PROCESSOR QUILLMARK_ZIG)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "arm64")
  set(mac_target aarch64-macos.13.0)
else()
  set(mac_target x86_64-macos.13.0)
endif()
set(CMAKE_CXX_COMPILER ${QUILLMARK_ZIG} c++ -target ${mac_target})
set(CMAKE_AR llvm-ar-19)
set(CMAKE_RANLIB llvm-ranlib-19)
set(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-19)
set(CMAKE_OSX_SYSROOT "")
set(CMAKE_INSTALL_LIBDIR lib)  # CMake cannot find out how wide this compiler's pointers are
set(CMAKE_USER_MAKE_RULES_OVERRIDE ${CMAKE_CURRENT_LIST_DIR}/macos-rules.cmake)
