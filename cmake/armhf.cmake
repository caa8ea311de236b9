# 32-bit ARM; programs run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static)
include(${CMAKE_CURRENT_LIST_DIR}/ForeignPackages.cmake)
use_foreign_packages(armhf arm-linux-gnueabihf)
