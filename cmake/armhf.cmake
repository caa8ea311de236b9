# 32-bit ARM, the processor of many televisions, played by qemu.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
include(${CMAKE_CURRENT_LIST_DIR}/ForeignPackages.cmake)
use_foreign_packages(armhf arm-linux-gnueabihf)
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT
    " -Wl,--dynamic-linker=/usr/arm-linux-gnueabihf/lib/ld-linux-armhf.so.3 -Wl,-rpath,/usr/arm-linux-gnueabihf/lib")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static)
