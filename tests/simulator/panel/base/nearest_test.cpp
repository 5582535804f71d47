#include "nearest.h"
#include "textpattern.h"

#include <gtest/gtest.h>

namespace panel {
namespace {

TEST(Nearest, ATextThatMatchesHasNoDistance) {
    for (const char* pattern : {"START 0.2", "START *", "*", "*0*", "S*T*2", "START 0.2*"}) {
        ASSERT_TRUE(matchesPattern(pattern, "START 0.2"));
        EXPECT_EQ(distanceTo(pattern, "START 0.2"), 0) << pattern;
    }
    EXPECT_EQ(distanceTo("", ""), 0);
}

TEST(Nearest, EachCharacterCountsAndAnotherCaseHalf) {
    EXPECT_EQ(distanceTo("Ok", "Ok."), 2);
    EXPECT_EQ(distanceTo("Ok", "k"), 2);
    EXPECT_EQ(distanceTo("Ok", "Oh"), 2);
    EXPECT_EQ(distanceTo("Ok", "OK"), 1);
    EXPECT_EQ(distanceTo("a*d", "abc"), 2);
    EXPECT_EQ(distanceTo("", "abc"), 6);
    EXPECT_EQ(distanceTo("abc", ""), 6);
}

TEST(Nearest, ListsTheMostLikeFirstAndEachOnce) {
    EXPECT_EQ(listNearestFirst("STOP", {"DATA?", "Stop", "DATA?", "START 1"}),
              R"("Stop", "DATA?" (2 times), "START 1")");
    EXPECT_EQ(listNearestFirst("x", {"b", "a"}), R"("b", "a")") << "equally far, so in order";
    EXPECT_EQ(listNearestFirst("x", {}), "nothing");
}

TEST(Nearest, ListsOnlyTheFirstOfVeryMany) {
    QStringList many;
    for (int i = 0; i < 25; ++i) {
        many += QStringLiteral("%1").arg(100 + i);
    }
    EXPECT_TRUE(listNearestFirst("100", many).startsWith(R"("100", "1)"));
    EXPECT_TRUE(listNearestFirst("100", many).endsWith(", and 5 more"));
}

} // namespace
} // namespace panel
