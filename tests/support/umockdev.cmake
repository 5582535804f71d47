# UMOCKDEV_PRELOAD: the CTest property that shows a umockdev testbed to a test program itself.
set(UMOCKDEV_PRELOAD ENVIRONMENT LD_PRELOAD=libumockdev-preload.so.0)
