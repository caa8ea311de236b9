# Target android_platform: liblog, libutils and libcutils, as packaged by Debian.

find_path(ANDROID_INCLUDE_DIR utils/RefBase.h PATHS /usr/include/android REQUIRED)
add_library(android_platform INTERFACE)
target_include_directories(android_platform SYSTEM INTERFACE ${ANDROID_INCLUDE_DIR})
foreach(name IN ITEMS utils cutils log)
    find_library(ANDROID_${name}_LIBRARY ${name} PATH_SUFFIXES android REQUIRED)
    target_link_libraries(android_platform INTERFACE ${ANDROID_${name}_LIBRARY})
endforeach()
