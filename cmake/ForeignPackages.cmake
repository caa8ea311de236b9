# For toolchain files: the packages that scripts/foreign-packages has unpacked.

# use_foreign_packages(<Debian's name of the architecture> <its directory of libraries>)
#
# Programs find their libraries, also those that libraries need, without a change of the machine.
macro(use_foreign_packages name libraries)
    set(CMAKE_LIBRARY_ARCHITECTURE ${libraries})
    get_filename_component(FOREIGN_ROOT ${CMAKE_CURRENT_LIST_DIR}/../build/packages/${name} ABSOLUTE)
    set(CMAKE_FIND_ROOT_PATH ${FOREIGN_ROOT})
    set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
    set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
    set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
    set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
    set(ENV{PKG_CONFIG_LIBDIR} ${FOREIGN_ROOT}/usr/lib/${libraries}/pkgconfig:${FOREIGN_ROOT}/usr/share/pkgconfig)
    set(ENV{PKG_CONFIG_SYSROOT_DIR} ${FOREIGN_ROOT})
    set(FOREIGN_LINK_FLAGS -Wl,--disable-new-dtags)
    foreach(directory IN ITEMS usr/lib/${libraries} usr/lib/${libraries}/android usr/lib/p7zip)
        string(APPEND FOREIGN_LINK_FLAGS " -Wl,-rpath,${FOREIGN_ROOT}/${directory}")
        string(APPEND FOREIGN_LINK_FLAGS " -Wl,-rpath-link,${FOREIGN_ROOT}/${directory}")
    endforeach()
    set(CMAKE_EXE_LINKER_FLAGS_INIT ${FOREIGN_LINK_FLAGS})
    set(CMAKE_SHARED_LINKER_FLAGS_INIT ${FOREIGN_LINK_FLAGS})
    set(CMAKE_MODULE_LINKER_FLAGS_INIT ${FOREIGN_LINK_FLAGS})
endmacro()
