# Target android_platform: liblog, libutils and libcutils, as packaged by Debian. Imported, so that an installed package
# finds them where it is used.

find_path(ANDROID_INCLUDE_DIR utils/RefBase.h PATHS /usr/include/android REQUIRED)
foreach(name IN ITEMS utils cutils log)
    find_library(ANDROID_${name}_LIBRARY ${name} PATH_SUFFIXES android REQUIRED)
endforeach()
if(NOT TARGET android_platform)
    add_library(android_platform INTERFACE IMPORTED)
    target_include_directories(android_platform SYSTEM INTERFACE ${ANDROID_INCLUDE_DIR})
    target_link_libraries(android_platform
        INTERFACE ${ANDROID_utils_LIBRARY} ${ANDROID_cutils_LIBRARY} ${ANDROID_log_LIBRARY})
endif()
