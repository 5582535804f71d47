#include "screentest.h"
#include "touch.h"
#include "touchpoll.h"

namespace {

using TouchTagTest = ScreenTest;

TEST_F(TouchTagTest, IsTheItemsTagAnd255IsNoTouch) {
    for (std::uint32_t tag = 0; tag <= 254; ++tag) {
        touch(tag);
        EXPECT_EQ(readTouchTag(&host), static_cast<int>(tag));
    }
    touch(255);
    EXPECT_EQ(readTouchTag(&host), noTouch);
}

TEST_F(TouchTagTest, EveryLookCallsTheHookOnceUntilThereIsNone) {
    int calls = 0;
    onTouchPoll([&calls] { ++calls; });
    readTouchTag(&host);
    EXPECT_EQ(calls, 1);
    touch(255);
    readTouchTag(&host);
    EXPECT_EQ(calls, 2);
    onTouchPoll({});
    readTouchTag(&host);
    EXPECT_EQ(calls, 2);
}

TEST(TouchChangeTest, AFingerThatComesDownIsAPress) {
    EXPECT_EQ(touchChange(noTouch, 1), TouchChange::Press);
    EXPECT_EQ(touchChange(noTouch, 254), TouchChange::Press);
}

TEST(TouchChangeTest, AFingerThatLiftsIsARelease) {
    EXPECT_EQ(touchChange(1, noTouch), TouchChange::Release);
    EXPECT_EQ(touchChange(254, noTouch), TouchChange::Release);
}

TEST(TouchChangeTest, AFingerThatStaysOrSlidesChangesNothing) {
    EXPECT_EQ(touchChange(7, 7), TouchChange::None);
    EXPECT_EQ(touchChange(7, 9), TouchChange::None);
    EXPECT_EQ(touchChange(noTouch, noTouch), TouchChange::None);
}

} // namespace
