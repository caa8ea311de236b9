# 32 bits on an x86 machine, at full speed. char is unsigned, as on ARM.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
include(${CMAKE_CURRENT_LIST_DIR}/ForeignPackages.cmake)
use_foreign_packages(i386 i386-linux-gnu)
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT
    " -Wl,--dynamic-linker=/usr/i686-linux-gnu/lib/ld-linux.so.2 -Wl,-rpath,/usr/i686-linux-gnu/lib")
set(CMAKE_CXX_FLAGS_INIT -funsigned-char)
