# What every target of this project is compiled with: link `project_settings` PRIVATE.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

add_library(project_settings INTERFACE)
target_compile_options(
    project_settings
    INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
              # Of sources that are compiled at once, g++ takes all for headers.
              $<$<AND:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>,$<CXX_COMPILER_ID:GNU>>:-Wno-subobject-linkage>)
target_compile_definitions(
    project_settings INTERFACE QT_NO_CAST_TO_ASCII
                               QT_DISABLE_DEPRECATED_BEFORE=0x050F00)

# A compiler's cache, where there is one; builds beside each other share what they compile alike. What
# a precompiled header holds does not depend on when it was made. What a source includes is taken from
# the compiler's own list (DEPEND), for preprocessing each once more takes a sixth of the time.
find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros
        CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_DEPEND=1 ${CCACHE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
        add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
    endif()
endif()

# compile_at_once(<folder>): several sources at once in what is added from here on, if the folder is
# one of FRONTPANEL_UNITY. Most of what a source takes to compile are the headers that its neighbours
# include as well. What is file-local needs a name of its own within the folder.
macro(compile_at_once folder)
    if(${folder} IN_LIST FRONTPANEL_UNITY)
        set(CMAKE_UNITY_BUILD ON)
    else()
        set(CMAKE_UNITY_BUILD OFF)
    endif()
endmacro()

if(FRONTPANEL_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    # The sanitizers' library inside the program, as clang has it anyway: a shared one would have to
    # be loaded before all others, umockdev's among them.
    add_link_options(-fsanitize=address,undefined)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        add_link_options(-static-libasan)
    endif()
endif()

# Programs of tests are large. What ships is linked with the compiler's own choice.
find_program(MOLD mold)
if(MOLD AND FRONTPANEL_SANITIZE)
    add_link_options(-fuse-ld=mold)
endif()

# Targets made between these two count which of their lines run. All others are compiled as for any
# release, so that a compiler's cache has them already.
macro(count_lines)
    get_directory_property(uncounted_options COMPILE_OPTIONS)
    # Atomic, because panelsim has threads.
    add_compile_options(-O0 -g1 --coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endmacro()
macro(stop_counting_lines)
    set_property(DIRECTORY PROPERTY COMPILE_OPTIONS ${uncounted_options})
endmacro()

if(FRONTPANEL_FUZZ)
    # Everything is watched, the fuzzers themselves bring libFuzzer's main().
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
