# Headers that the tests parse once for a program instead of in each file. Not for what is installed, whose bytes would
# then depend on it, and not with ccache, which would not keep what is compiled with them; so a file must include what it
# uses in any case.

set(precompile OFF)
if(PROJECT_IS_TOP_LEVEL AND CMAKE_CXX_COMPILER_ID STREQUAL GNU AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(precompile ON)
endif()
option(HBBTV_PRECOMPILED_HEADERS "Precompile headers of the C++ library and of other packages for tests" ${precompile})

# precompile_headers(<target> <header in brackets>...)
#
# The C++ library's and the given ones.
function(precompile_headers target)
    if(HBBTV_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} PRIVATE
            <algorithm> <atomic> <chrono> <condition_variable> <functional> <map> <memory> <mutex> <optional> <set>
            <sstream> <string> <thread> <vector> ${ARGN})
    endif()
endfunction()

# precompile_headers_once(<target> <header in brackets>...)
#
# As above, for targets of a directory that have the same compile options: the first one's are those of the others.
function(precompile_headers_once target)
    get_property(first DIRECTORY PROPERTY FIRST_WITH_PRECOMPILED_HEADERS)
    if(NOT first)
        set_property(DIRECTORY PROPERTY FIRST_WITH_PRECOMPILED_HEADERS ${target})
        precompile_headers(${target} ${ARGN})
    elseif(HBBTV_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} REUSE_FROM ${first})
    endif()
endfunction()
