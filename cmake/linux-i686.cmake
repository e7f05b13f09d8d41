# 32-bit x86 on Linux, compiled by the multilib compiler of a 64-bit host (or natively on i386).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
foreach(lang C CXX ASM Fortran)
  set(CMAKE_${lang}_FLAGS_INIT "-m32")
endforeach()
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
# Tests and generators run on the build host: the kernel executes both.
set(CMAKE_CROSSCOMPILING FALSE)
