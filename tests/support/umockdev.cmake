# UMOCKDEV_PRELOAD: the CTest property that shows a umockdev testbed to a test program itself.
# SANITIZER_PRELOAD: the one for a test program that starts others on a testbed.
# The sanitizer's library, where it is a shared one, has to be the first to be loaded.
set(SANITIZER_PRELOAD "")
set(UMOCKDEV_PRELOAD ENVIRONMENT LD_PRELOAD=libumockdev-preload.so.0)
if(FRONTPANEL_SANITIZE)
    execute_process(
        COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libasan.so
        OUTPUT_VARIABLE asan_library
        OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(IS_ABSOLUTE "${asan_library}")
        set(SANITIZER_PRELOAD ENVIRONMENT LD_PRELOAD=${asan_library})
        set(UMOCKDEV_PRELOAD ENVIRONMENT LD_PRELOAD=${asan_library}:libumockdev-preload.so.0)
    endif()
endif()
