#include "keypadtext.h"

#include <gtest/gtest.h>

namespace soak {
namespace {

KeypadText typed(const std::string& keys) {
    KeypadText text;
    for (const char key : keys) {
        text.type(key);
    }
    return text;
}

TEST(KeypadText, TakesOnePointOnly) {
    EXPECT_EQ(typed("1.2.3").text(), "1.23");
}

TEST(KeypadText, TogglesTheSignOfATextThatIsNotEmpty) {
    EXPECT_EQ(typed("-").text(), "");
    EXPECT_EQ(typed("12-").text(), "-12");
    EXPECT_EQ(typed("12--").text(), "12");
}

TEST(KeypadText, RemovesTheLastCharacter) {
    EXPECT_EQ(typed("12<").text(), "1");
    EXPECT_EQ(typed("<").text(), "");
}

TEST(KeypadText, IsANumberOnlyWithDigits) {
    EXPECT_EQ(typed("1.").number(), 1.0);
    EXPECT_EQ(typed(".5-").number(), -0.5);
    EXPECT_EQ(typed("007").number(), 7.0);
    EXPECT_EQ(typed("").number(), std::nullopt);
    EXPECT_EQ(typed(".-").number(), std::nullopt);
    EXPECT_EQ(typed("1-<").number(), std::nullopt); // a minus sign alone
}

} // namespace
} // namespace soak
