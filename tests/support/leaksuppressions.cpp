// Read by LeakSanitizer, where a program is built with it.
// NOLINTBEGIN(clang-diagnostic-reserved-identifier)
extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_suppressions();

// No report of what was suppressed: programs' outputs are compared.
const char* __lsan_default_options() {
    return "print_suppressions=0";
}

// The SPI device and the lines are left to the end of the process on purpose (see Platform).
const char* __lsan_default_suppressions() {
    return "leak:Platform::Platform\n";
}
// NOLINTEND(clang-diagnostic-reserved-identifier)
