#include "gesture.h"
#include "host.h"

#include <gtest/gtest.h>

namespace panel {
namespace {

using namespace controllertest; // its operator+ too

using Words = std::vector<std::uint32_t>;

constexpr QPoint onOk(15, 25);
constexpr QPoint onSeven(115, 25);
constexpr QPoint onNothing(300, 200);

// A touchable rectangle, 80 x 40.
Words button(std::uint32_t tag, int left, int top) {
    const auto vertex = [](int x, int y) {
        return 0x80000000U | static_cast<std::uint32_t>(x) << 21U |
               static_cast<std::uint32_t>(y) << 12U;
    };
    return {0x03000000U | tag, 0x1F000009, vertex(left, top), vertex(left + 80, top + 40)};
}

Words label(const char* text, int x, int y) {
    return Words{cmd::text, pair(x, y), pair(26, 0)} + words(text);
}

class GestureTest : public testing::Test {
protected:
    GestureTest() {
        m_host.bootWithPanel();
        show(button(3, 10, 20) + label("Ok", 40, 30) + button(7, 110, 20));
    }

    void show(const Words& words) {
        m_host.send(Words{cmd::dlStart, 0x26000007} + words + Words{0, cmd::swap});
        m_host.waitFrames(3);
    }

    void press(QPoint pixel) { m_gesture.press(m_host.chip, pixel); }
    void move(QPoint pixel) { m_gesture.move(m_host.chip, pixel); }

    Host m_host{controller::Generation::E3};
    Gesture m_gesture;
};

TEST_F(GestureTest, APlaceIsCalledByItsTextOrTagOrPixel) {
    EXPECT_EQ(placeName(m_host.chip, onOk), "\"Ok\"");
    EXPECT_EQ(placeName(m_host.chip, onSeven), "tag 7");
    EXPECT_EQ(placeName(m_host.chip, onNothing), "300 200");
}

TEST_F(GestureTest, ATextThatStandsTwiceNamesNoPlace) {
    show(button(3, 10, 20) + label("Ok", 40, 30) + button(7, 110, 20) + label("Ok", 140, 30));
    EXPECT_EQ(placeName(m_host.chip, onOk), "tag 3");
}

TEST_F(GestureTest, ATagThatStandsTwiceNamesNoPlace) {
    show(button(3, 10, 20) + label("Ok", 40, 30) + button(3, 110, 20));
    EXPECT_EQ(placeName(m_host.chip, onOk), "15 25");
}

TEST_F(GestureTest, DownAndUpIsATap) {
    press(onOk);
    EXPECT_TRUE(m_gesture.isDown());
    m_gesture.tagRead(0); // of a frame before
    m_gesture.tagRead(3);
    m_gesture.tagRead(3);
    EXPECT_EQ(m_gesture.release(), QStringList{"tap \"Ok\""});
    EXPECT_FALSE(m_gesture.isDown());
}

TEST_F(GestureTest, ASlideTellsWhatHasBeenRead) {
    press(onOk);
    m_gesture.tagRead(3);
    move(onNothing);
    move(onSeven);
    m_gesture.tagRead(7);
    EXPECT_EQ(m_gesture.release(), QStringList({"press \"Ok\"", "move tag 7", "release"}));
}

TEST_F(GestureTest, WhatHasNotBeenReadDoesNotCount) {
    press(onOk);
    move(onSeven);
    m_gesture.tagRead(7);
    EXPECT_EQ(m_gesture.release(), QStringList{"tap tag 7"});
}

TEST_F(GestureTest, WhatIsUnderAHeldFingerIsToldOnce) {
    press(onOk);
    m_gesture.tagRead(3);
    EXPECT_EQ(m_gesture.takeLines(), QStringList{"press \"Ok\""});
    EXPECT_EQ(m_gesture.takeLines(), QStringList());
    EXPECT_EQ(m_gesture.release(), QStringList{"release"});
}

TEST_F(GestureTest, ATouchThatNobodyReadIsNotWaitedFor) {
    press(onOk);
    EXPECT_EQ(m_gesture.release(), QStringList({"press \"Ok\" now", "release now"}));
}

} // namespace
} // namespace panel
