#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>

// Expects `statement` to end the process through a failed assertion with exactly this message.
#define EXPECT_ASSERTION_FAILURE(statement, file, line, function, text)                            \
    EXPECT_EXIT(statement, testing::KilledBySignal(SIGABRT),                                       \
                testing::HasSubstr(assertionMessage(file, line, function, text)))

inline std::string assertionMessage(const std::string& file, int line, const std::string& function,
                                    const std::string& text) {
    return ": " + file + ":" + std::to_string(line) + ": " + function + ": Assertion `" + text +
           "' failed.\n";
}
