#pragma once

// The C library's own assertion failure: prints "FILE:LINE: FUNCTION: Assertion `TEXT' failed." and
// aborts. Declared here, exactly as <assert.h> does, because that header hides it under NDEBUG.
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier,clang-diagnostic-redundant-decls): theirs.
extern "C" void __assert_fail(const char* assertion, const char* file, unsigned int line,
                              const char* function) noexcept __attribute__((__noreturn__));

// Ends the process when `condition` is false, in release builds too. The message is part of the
// layer's behaviour, so all of it is given: the text of the condition, and file, line and function
// as they are known to whoever reads the message, whatever the source looks like today.
#define EVE_ASSERT(condition, text, file, line, function)                                          \
    ((condition) ? static_cast<void>(0) : __assert_fail(text, file, line, function))
