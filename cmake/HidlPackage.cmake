# Builds shared libraries from .hal files with hidl-gen, at build time.

find_program(HIDL_GEN hidl-gen REQUIRED)

# The arguments of the functions below for our package.
set(HBBTV_HIDL_PACKAGE
    PACKAGE vantorel.hardware.hbbtv@1.0
    DIRECTORY ${PROJECT_SOURCE_DIR}/hbbtv/1.0
    ROOTS vantorel.hardware:${PROJECT_SOURCE_DIR} android.hidl:${PROJECT_SOURCE_DIR}/host/hal)

# hidl_generate(<prefix> PACKAGE <name> DIRECTORY <directory of its .hal files> ROOTS <package root>:<directory>...
#               [DEPENDS <file>...])
#
# Sets <prefix>_SOURCES and <prefix>_HEADERS, the files that hidl-gen generates for PACKAGE (android.hidl.base@1.0, for
# example), and <prefix>_INCLUDE_DIR, the directory of the headers. DEPENDS names imported .hal files of other packages.
# A package root's current.txt freezes its released interfaces, and gives the hashes that getHashChain() returns.
function(hidl_generate prefix)
    cmake_parse_arguments(HIDL "" "PACKAGE;DIRECTORY" "ROOTS;DEPENDS" ${ARGN})
    string(REGEX MATCH "^([^@]+)@(.+)$" matched ${HIDL_PACKAGE})
    string(REPLACE "." "/" path ${CMAKE_MATCH_1})
    set(path ${path}/${CMAKE_MATCH_2})
    set(out ${CMAKE_CURRENT_BINARY_DIR}/hidl/${HIDL_PACKAGE})
    set(roots)
    foreach(root IN LISTS HIDL_ROOTS)
        list(APPEND roots -r ${root})
        string(REGEX REPLACE "^[^:]+:" "" directory ${root})
        if(EXISTS ${directory}/current.txt)
            list(APPEND HIDL_DEPENDS ${directory}/current.txt)
        endif()
    endforeach()

    file(GLOB hals CONFIGURE_DEPENDS ${HIDL_DIRECTORY}/*.hal)
    set(sources)
    set(headers)
    foreach(hal IN LISTS hals)
        cmake_path(GET hal STEM name)
        if(name STREQUAL types)
            list(APPEND sources ${out}/${path}/types.cpp)
            list(APPEND headers ${out}/${path}/types.h ${out}/${path}/hwtypes.h)
        else()
            string(SUBSTRING ${name} 1 -1 base)
            list(APPEND sources ${out}/${path}/${base}All.cpp)
            foreach(kind IN ITEMS I IHw BnHw BpHw Bs)
                list(APPEND headers ${out}/${path}/${kind}${base}.h)
            endforeach()
        endif()
    endforeach()

    set(generate ${HIDL_GEN} -p ${PROJECT_SOURCE_DIR} -o ${out} -R ${roots})
    add_custom_command(
        OUTPUT ${sources} ${headers}
        COMMAND ${generate} -L c++-headers ${HIDL_PACKAGE}
        COMMAND ${generate} -L c++-sources ${HIDL_PACKAGE}
        DEPENDS ${hals} ${HIDL_DEPENDS}
        COMMENT "hidl-gen ${HIDL_PACKAGE}"
        VERBATIM)
    set(${prefix}_SOURCES ${sources} PARENT_SCOPE)
    set(${prefix}_HEADERS ${headers} PARENT_SCOPE)
    set(${prefix}_INCLUDE_DIR ${out} PARENT_SCOPE)
endfunction()

# add_hidl_library(<target> PACKAGE ... DIRECTORY ... ROOTS ... [DEPENDS ...])
#
# Adds the interface library of a package. It is a shared library, so that a process has one registry of the interfaces
# no matter how many libraries use them. Its property HIDL_INCLUDE_DIR is the directory of its headers.
function(add_hidl_library target)
    hidl_generate(GENERATED ${ARGN})
    cmake_parse_arguments(HIDL "" "PACKAGE" "" ${ARGN})
    add_library(${target} SHARED ${GENERATED_SOURCES} ${GENERATED_HEADERS})
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME ${HIDL_PACKAGE} PREFIX "" HIDL_INCLUDE_DIR ${GENERATED_INCLUDE_DIR})
    target_include_directories(${target} SYSTEM PUBLIC $<BUILD_INTERFACE:${GENERATED_INCLUDE_DIR}>)
    # Its size is most of the service's memory, and its time to compile most of the library's.
    target_compile_options(${target} PRIVATE -w $<$<CONFIG:RelWithDebInfo>:-Os>)
    target_link_libraries(${target} PUBLIC hidl_host PRIVATE hbbtv_lean_library)
endfunction()
