# How every target here is compiled: quillmark_options carries the language level,
# the warnings and, in release builds, the hardening.

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# Without this, position-independent code keeps every function replaceable and inlines none.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
include(CheckPIESupported)
check_pie_supported()

option(QUILLMARK_WARNINGS_AS_ERRORS "Stop the build at the first warning" OFF)
set(QUILLMARK_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined")

add_library(quillmark_options INTERFACE)
target_compile_features(quillmark_options INTERFACE cxx_std_23)
target_compile_options(quillmark_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  # When it optimizes, g++ 12 wrongly reports that joining two strings is an overlapping copy.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
  $<$<BOOL:${QUILLMARK_WARNINGS_AS_ERRORS}>:-Werror>)

if(QUILLMARK_SANITIZE)
  target_compile_options(quillmark_options INTERFACE
    -fsanitize=${QUILLMARK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quillmark_options INTERFACE -fsanitize=${QUILLMARK_SANITIZE})
endif()

set(release $<CONFIG:Release>)
set(linux $<PLATFORM_ID:Linux>)
target_compile_options(quillmark_options INTERFACE
  $<${release}:-fstack-protector-strong>
  $<${release}:-ffunction-sections>
  $<${release}:-fdata-sections>
  # The program contains no path of the machine on which it was built.
  $<${release}:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>
  $<${release}:-U_FORTIFY_SOURCE>
  $<${release}:-D_FORTIFY_SOURCE=2>
  $<$<AND:${release},${linux}>:-fstack-clash-protection>)
target_link_options(quillmark_options INTERFACE
  "$<$<AND:${release},${linux}>:LINKER:-z,relro,-z,now,-z,noexecstack,--gc-sections,--as-needed>"
  "$<$<AND:${release},$<PLATFORM_ID:Darwin>>:LINKER:-dead_strip>")

# The installed program needs nothing except the C library: the C++ runtime is linked in.
add_library(quillmark_static_runtime INTERFACE)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT QUILLMARK_SANITIZE)
  target_link_options(quillmark_static_runtime INTERFACE
    $<${release}:-static-libstdc++> $<${release}:-static-libgcc>)
endif()
