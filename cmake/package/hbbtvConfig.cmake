# find_package(hbbtv): hbbtv::client, the interfaces of vantorel.hardware.hbbtv@1.0; hbbtv::hidl_host, the HIDL runtime
# that it uses; hbbtv::wire, which reads the wire protocol, builds messages and connects to sockets.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
find_dependency(jsoncpp)
include(${CMAKE_CURRENT_LIST_DIR}/AndroidPlatform.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/hbbtvTargets.cmake)
