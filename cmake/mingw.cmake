# A toolchain file: MinGW-w64 as Debian has it, with the threads of C++, for 64-bit Windows.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# What this machine has installed for itself is not for Windows; its programs make files all the same.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

# What pkg-config knows is this machine's, too.
set(CMAKE_DISABLE_FIND_PACKAGE_PkgConfig ON)
