#include "textpattern.h"

#include <gtest/gtest.h>

namespace panel {
namespace {

TEST(TextPattern, WithoutStarIsTheWholeText) {
    EXPECT_TRUE(matchesPattern("STOP", "STOP"));
    EXPECT_FALSE(matchesPattern("STOP", "STOP 1"));
    EXPECT_FALSE(matchesPattern("STOP", "stop"));
}

TEST(TextPattern, StarStandsForAnything) {
    EXPECT_TRUE(matchesPattern("START *", "START 0.5"));
    EXPECT_TRUE(matchesPattern("*0.5", "START 0.5"));
    EXPECT_TRUE(matchesPattern("S*5", "START 0.5"));
    EXPECT_TRUE(matchesPattern("*", ""));
    EXPECT_TRUE(matchesPattern("a*b", "a\nb"));
    EXPECT_FALSE(matchesPattern("START *", "START"));
}

TEST(TextPattern, NothingElseIsSpecial) {
    EXPECT_TRUE(matchesPattern("DATA?", "DATA?"));
    EXPECT_FALSE(matchesPattern("DATA?", "DAT"));
    EXPECT_FALSE(matchesPattern("1.5", "1x5"));
    EXPECT_TRUE(matchesPattern("Trigger[0]:", "Trigger[0]:"));
}

} // namespace
} // namespace panel
