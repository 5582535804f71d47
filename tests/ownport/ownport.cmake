# Tests that need TCP port 9800, which the application has no choice about. ownport (see there) runs
# them side by side in network namespaces, or one after the other where there are none. Which it is
# is found out by every run of ctest, which says so in the latter case.
#
#   own_port_tests(<test>...)    tests of add_test(), whose commands begin with "ownport"
#   finish_own_port()            to be called once, in a directory behind all those tests'

function(own_port_tests)
    set_property(GLOBAL APPEND PROPERTY OWN_PORT_TESTS ${ARGN})
endfunction()

function(finish_own_port)
    get_property(tests GLOBAL PROPERTY OWN_PORT_TESTS)
    list(JOIN tests " " OWN_PORT_TESTS)
    configure_file(${CMAKE_SOURCE_DIR}/tests/ownport/ownport-ctest.cmake.in
                   ${CMAKE_CURRENT_BINARY_DIR}/ownport-ctest.cmake.in @ONLY)
    file(
        GENERATE
        OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/ownport-ctest.cmake
        INPUT ${CMAKE_CURRENT_BINARY_DIR}/ownport-ctest.cmake.in)
    set_property(
        DIRECTORY
        APPEND
        PROPERTY TEST_INCLUDE_FILES ${CMAKE_CURRENT_BINARY_DIR}/ownport-ctest.cmake)
endfunction()
