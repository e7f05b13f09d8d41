# 32-bit x86 on Windows, compiled by Debian's mingw-w64 and run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

# GNU MP for the target, as cmake/windows_gmp.sh leaves it; nothing of the host's.
set(JEX_WINDOWS_GMP "${CMAKE_CURRENT_LIST_DIR}/../build/windows-gmp/install"
    CACHE PATH "GNU MP built for Windows")
set(CMAKE_FIND_ROOT_PATH "${JEX_WINDOWS_GMP}" /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# ctest starts the programs of the build through this.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/run_wine.sh")
