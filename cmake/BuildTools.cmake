# Programs that the build runs. Built for the board they could not run here: then they come from this
# same project, configured once more for the machine that builds, in build-tools/ below the build.

# add_build_tools(<target>...): imported programs in place of the targets. To be called once, and
# only when cross-compiling.
function(add_build_tools)
    include(ExternalProject)
    set(directory ${CMAKE_BINARY_DIR}/build-tools)
    list(TRANSFORM ARGN PREPEND ${directory}/bin/ OUTPUT_VARIABLE programs)
    # What a package's build says in the environment is meant for the board, too.
    set(here ${CMAKE_COMMAND} -E env)
    foreach(
        variable
        CC CXX CFLAGS CXXFLAGS CPPFLAGS LDFLAGS CMAKE_TOOLCHAIN_FILE CMAKE_PREFIX_PATH
        PKG_CONFIG PKG_CONFIG_PATH PKG_CONFIG_LIBDIR)
        list(APPEND here --unset=${variable})
    endforeach()
    ExternalProject_Add(
        build_tools
        SOURCE_DIR ${CMAKE_SOURCE_DIR}
        BINARY_DIR ${directory}
        CONFIGURE_COMMAND
            ${here} ${CMAKE_COMMAND} -G ${CMAKE_GENERATOR} -S ${CMAKE_SOURCE_DIR} -B ${directory}
            -DCMAKE_BUILD_TYPE=Release -DFRONTPANEL_SIMULATOR=OFF -DFRONTPANEL_BENCH=OFF
            -DBUILD_TESTING=${BUILD_TESTING} -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON
        BUILD_COMMAND ${here} ${CMAKE_COMMAND} --build ${directory} --target ${ARGN}
        BUILD_ALWAYS ON
        BUILD_BYPRODUCTS ${programs}
        INSTALL_COMMAND "")
    foreach(target program IN ZIP_LISTS ARGN programs)
        add_executable(${target} IMPORTED GLOBAL)
        set_target_properties(${target} PROPERTIES IMPORTED_LOCATION ${program}
                                                   CROSSCOMPILING_EMULATOR "")
        add_dependencies(${target} build_tools)
    endforeach()
endfunction()
