#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>

// Expects `statement` to end the process through a failed assertion with exactly this message.
#define EXPECT_ASSERTION_FAILURE(statement, file, line, function, text)                            \
    EXPECT_EXIT(statement, testing::KilledBySignal(SIGABRT),                                       \
                testing::HasSubstr(assertionMessage(file, line, function, text)))

// A function's signature as the compiler spells it where the code under test has it spelled.
inline std::string signatureAsCompiled(std::string signature) {
#ifdef __clang__
    for (auto star = signature.find('*'); star != std::string::npos;
         star = signature.find('*', star + 2)) {
        signature.insert(star, " ");
    }
#endif
    return signature;
}

inline std::string assertionMessage(const std::string& file, int line, const std::string& function,
                                    const std::string& text) {
    return ": " + file + ":" + std::to_string(line) + ": " + signatureAsCompiled(function) +
           ": Assertion `" + text + "' failed.\n";
}
