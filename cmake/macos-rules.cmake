# Part of macos-from-linux.cmake, read after CMake's own rules.

# Code for macOS is always position-independent, and this compiler refuses the option for it.
set(CMAKE_CXX_COMPILE_OPTIONS_PIE -fPIC)

# Linked as a C++ program is by default, the program would copy memory with the toolchain's plain
# loops (compiler-rt) and not with the system's fast functions. With symbols for debuggers, its UUID
# would depend on the folder in which it is built.
set(CMAKE_CXX_LINK_EXECUTABLE "\"${QUILLMARK_ZIG}\" build-exe -target ${mac_target} -O ReleaseFast \
-dead_strip -fstrip -fno-compiler-rt -lc -lc++ <OBJECTS> <LINK_LIBRARIES> -femit-bin=<TARGET>")
