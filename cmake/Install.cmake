# Where things are installed, and how installed programs and libraries find each other. An installed tree works wherever
# it is moved to: paths within it are relative to the file that contains them.
#
# Each rule names its component: service, client, wire, sim, browser, ctl or doc.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

option(HBBTV_RELOCATABLE "Let installed programs find the libraries of their tree wherever it is" ON)
if(HBBTV_HIDL)
    cmake_path(GET ANDROID_log_LIBRARY PARENT_PATH ANDROID_LIBRARY_DIR)
endif()

# Where the HIDL runtime looks for implementations, beside itself.
set(HIDL_HOST_MODULE_DIR ${CMAKE_INSTALL_LIBDIR}/hidl-host)
set(HBBTV_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/hbbtv)
set(HBBTV_DATA_DIR ${CMAKE_INSTALL_DATADIR}/hbbtv)
set(HBBTV_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/hbbtv)

# Sets the library path of what is installed in the directory.
function(set_install_rpath target directory)
    set(paths)
    if(HBBTV_RELOCATABLE)
        file(RELATIVE_PATH libraries /${directory} /${CMAKE_INSTALL_LIBDIR})
        list(APPEND paths $ORIGIN/${libraries})
    endif()
    list(APPEND paths ${ANDROID_LIBRARY_DIR})
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${paths}")
endfunction()

# A program that uses HIDL needs the libraries of its tree and Android's.
function(install_program target component)
    cmake_parse_arguments(PROGRAM "USES_HIDL" "" "" ${ARGN})
    if(HBBTV_INSTALL)
        if(PROGRAM_USES_HIDL)
            set_install_rpath(${target} ${CMAKE_INSTALL_BINDIR})
        endif()
        install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
    endif()
endfunction()

# Installs a library and exports it as hbbtv::<name>.
function(install_library target name component)
    add_library(hbbtv::${name} ALIAS ${target})
    if(HBBTV_INSTALL)
        set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
        install(TARGETS ${target} EXPORT hbbtv
            ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component}
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component})
    endif()
endfunction()

function(install_shared_library target name component)
    set_install_rpath(${target} ${CMAKE_INSTALL_LIBDIR})
    set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    install_library(${target} ${name} ${component})
endfunction()

# Installs an implementation that a service loads by its name.
function(install_module target component)
    if(HBBTV_INSTALL)
        set_install_rpath(${target} ${HIDL_HOST_MODULE_DIR})
        install(TARGETS ${target} LIBRARY DESTINATION ${HIDL_HOST_MODULE_DIR} COMPONENT ${component})
    endif()
endfunction()

# Installs the headers below a directory. As in install(DIRECTORY), a slash at its end leaves out its last name.
function(install_headers directory subdirectory component)
    if(HBBTV_INSTALL)
        install(DIRECTORY ${directory}
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${subdirectory} COMPONENT ${component}
            FILES_MATCHING PATTERN *.h)
    endif()
endfunction()

# Installs the manual pages of a section in the directory.
function(install_pages directory section component)
    if(HBBTV_INSTALL)
        install(DIRECTORY ${directory}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT ${component})
    endif()
endfunction()

# Installs manual pages and the completion scripts of bash, zsh and fish, in these directories, of a program.
function(install_manuals program manuals completions component)
    if(HBBTV_INSTALL)
        install_pages(${manuals} 1 ${component})
        set(data ${CMAKE_INSTALL_DATADIR})
        install(FILES ${completions}/${program}
            DESTINATION ${data}/bash-completion/completions COMPONENT ${component})
        install(FILES ${completions}/_${program} DESTINATION ${data}/zsh/site-functions COMPONENT ${component})
        install(FILES ${completions}/${program}.fish
            DESTINATION ${data}/fish/vendor_completions.d COMPONENT ${component})
    endif()
endfunction()

# Writes manual page and completion scripts of a program from its help, and installs them. The target <name>_manual has
# their directories as its properties MANUALS and COMPLETIONS.
function(add_manual target component summary see_also)
    set(manuals ${CMAKE_CURRENT_BINARY_DIR}/man)
    set(completions ${CMAKE_CURRENT_BINARY_DIR}/completion)
    add_custom_command(
        OUTPUT ${manuals}/${target}.1
        COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/cmake/write_manual.py
                --program "${CMAKE_CROSSCOMPILING_EMULATOR};$<TARGET_FILE:${target}>"
                --summary ${summary} --see-also ${see_also} --manuals ${manuals} --completions ${completions}
        DEPENDS ${target} ${PROJECT_SOURCE_DIR}/cmake/write_manual.py
        COMMENT "${target}: manual page and completion"
        VERBATIM)
    add_custom_target(${target}_manual ALL DEPENDS ${manuals}/${target}.1)
    set_target_properties(${target}_manual PROPERTIES MANUALS ${manuals} COMPLETIONS ${completions})
    install_manuals(${target} ${manuals} ${completions} ${component})
endfunction()

# Installs the documents and the wire protocol.
function(install_documents)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/protocol DESTINATION ${HBBTV_DATA_DIR} COMPONENT wire
        FILES_MATCHING PATTERN *.json)
    install(FILES ${PROJECT_SOURCE_DIR}/docs/hbbtvctl.schema.json
        DESTINATION ${HBBTV_DATA_DIR}/schemas COMPONENT ctl)
    # With the paths that their links have.
    install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
        DESTINATION ${HBBTV_DOC_DIR} COMPONENT doc)
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSES/Apache-2.0.txt
        DESTINATION ${HBBTV_DOC_DIR} COMPONENT doc RENAME LICENSE)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples DESTINATION ${HBBTV_DOC_DIR} COMPONENT doc)
    install(FILES ${PROJECT_SOURCE_DIR}/tools/demo/demo.play DESTINATION ${HBBTV_DOC_DIR}/examples COMPONENT doc)
    install(FILES ${PROJECT_SOURCE_DIR}/host/README.md DESTINATION ${HBBTV_DOC_DIR}/host COMPONENT doc)
endfunction()

# Installs the .hal files, and what other build systems need to find the libraries.
function(install_packages)
    set(hidl ${CMAKE_INSTALL_DATADIR}/hidl)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/hbbtv/1.0
        DESTINATION ${hidl}/vantorel/hardware/hbbtv COMPONENT client
        FILES_MATCHING PATTERN *.hal PATTERN default EXCLUDE)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/host/hal/ DESTINATION ${hidl}/android/hidl COMPONENT client
        FILES_MATCHING PATTERN *.hal)

    set(package ${PROJECT_SOURCE_DIR}/cmake/package)
    set(built ${CMAKE_CURRENT_BINARY_DIR}/package)
    install(EXPORT hbbtv NAMESPACE hbbtv:: FILE hbbtvTargets.cmake
        DESTINATION ${HBBTV_CMAKE_DIR} COMPONENT client)
    write_basic_package_version_file(${built}/hbbtvConfigVersion.cmake COMPATIBILITY SameMajorVersion)
    install(FILES ${package}/hbbtvConfig.cmake ${built}/hbbtvConfigVersion.cmake
                  ${PROJECT_SOURCE_DIR}/cmake/AndroidPlatform.cmake
        DESTINATION ${HBBTV_CMAKE_DIR} COMPONENT client)
    file(RELATIVE_PATH PC_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
    foreach(name IN ITEMS hidl-host hbbtv-client hbbtv-wire)
        configure_file(${package}/${name}.pc.in ${built}/${name}.pc @ONLY)
        install(FILES ${built}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT client)
    endforeach()
endfunction()
