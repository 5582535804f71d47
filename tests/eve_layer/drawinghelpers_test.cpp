#include "App_Common.h"
#include "Gpu_Hal.h"
#include "displaysettings.h"
#include "drawinghelpers.h"
#include "e3addresses.h"
#include "recordingboard.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

class DrawingHelpers : public testing::Test {
protected:
    DrawingHelpers() {
        board.reset();
        DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_3);
        App_Set_CmdBuffer_Index(0);
        scaling = 0;
    }

    // The values written to the backlight, in order.
    static std::vector<int> dutiesWritten() {
        std::vector<int> duties;
        for (const Transaction& write : board.transactions(Transaction::Write, regPwmDuty)) {
            EXPECT_EQ(write.data.size(), 1U);
            duties.push_back(write.data.at(0));
        }
        return duties;
    }

    Gpu_Hal_Context_t host;
};

// ---- Numbers to text ----

std::string appended(const char* text, int32_t value) {
    std::array<char, 40> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%s", text);
    EXPECT_EQ(Gpu_Hal_Dec2Ascii(buffer.data(), value), 0);
    return buffer.data();
}

TEST_F(DrawingHelpers, AppendDecimalsToAText) {
    EXPECT_EQ(appended("T=", -120), "T=-120");
    EXPECT_EQ(appended("T=", 0), "T=0");
    EXPECT_EQ(appended("", 7), "7");
    EXPECT_EQ(appended("a ", 1000), "a 1000");
}

TEST_F(DrawingHelpers, AppendTheOutermostNumbers) {
    EXPECT_EQ(appended("", std::numeric_limits<int32_t>::max()), "2147483647");
    EXPECT_EQ(appended("", std::numeric_limits<int32_t>::min()), "-2147483648");
}

TEST_F(DrawingHelpers, WriteNothingBehindTheEndOfTheText) {
    std::array<char, 40> buffer{};
    std::fill(buffer.begin(), buffer.end(), 'x');
    buffer[0] = '\0';
    Gpu_Hal_Dec2Ascii(buffer.data(), std::numeric_limits<int32_t>::min());
    EXPECT_STREQ(buffer.data(), "-2147483648");
    EXPECT_EQ(buffer[sizeof "-2147483648"], 'x');
}

// ---- Screen and backlight ----

TEST_F(DrawingHelpers, ClearScreenWritesThreeWordsAndAsksForASwapWithoutWaiting) {
    Gpu_ClearScreen(&host);
    EXPECT_THAT(board.transactions(),
                ElementsAre(Transaction::write(ramDl, {0x00, 0x00, 0x00, 0x02, //
                                                       0x07, 0x00, 0x00, 0x26, //
                                                       0x00, 0x00, 0x00, 0x00}),
                            Transaction::write8(regDlSwap, 2)));
}

TEST_F(DrawingHelpers, FadeoutStopsAtOne) {
    fadeout(&host);
    std::vector<int> expected;
    for (int duty = 100; duty >= 1; duty -= 3) {
        expected.push_back(duty);
    }
    EXPECT_EQ(expected.size(), 34U);
    EXPECT_EQ(dutiesWritten(), expected);
    EXPECT_EQ(board.peek(regPwmDuty), 1U);
    EXPECT_EQ(board.sleptMs(), 34U * 2);
    EXPECT_EQ(board.events().back(), "sleep 2");
}

TEST_F(DrawingHelpers, FadeinEndsAtFullBrightness) {
    fadein(&host);
    std::vector<int> expected;
    for (int duty = 0; duty <= 99; duty += 3) {
        expected.push_back(duty);
    }
    EXPECT_EQ(expected.size(), 34U);
    expected.push_back(128);
    EXPECT_EQ(dutiesWritten(), expected);
    EXPECT_EQ(board.sleptMs(), 34U * 2);
    EXPECT_EQ(board.events().back(), "CS high");
}

// ---- Arithmetic ----

TEST_F(DrawingHelpers, AverageFloats) {
    const std::array<float, 4> values = {1.0F, 2.0F, 4.0F, -1.0F};
    EXPECT_FLOAT_EQ(cal_average(values.data(), 4), 1.5F);
    EXPECT_FLOAT_EQ(cal_average(values.data(), 1), 1.0F);
}

TEST_F(DrawingHelpers, AverageNothingToNan) {
    EXPECT_TRUE(std::isnan(cal_average(nullptr, 0)));
}

TEST_F(DrawingHelpers, AverageInSinglePrecisionInOrder) {
    // 2^24 swallows each 1 that comes after it, but not the 2 they would have made first.
    const std::array<float, 3> largeFirst = {16777216.0F, 1.0F, 1.0F};
    const std::array<float, 3> largeLast = {1.0F, 1.0F, 16777216.0F};
    EXPECT_EQ(cal_average(largeFirst.data(), 3), 16777216.0F / 3.0F);
    EXPECT_EQ(cal_average(largeLast.data(), 3), 16777218.0F / 3.0F);
}

TEST_F(DrawingHelpers, SineOfTheQuarterTurns) {
    EXPECT_EQ(qsin(0), 0);
    EXPECT_EQ(qsin(0x4000), 32767);
    EXPECT_EQ(qsin(0x8000), 0);
    EXPECT_EQ(qsin(0xC000), -32767);
    EXPECT_EQ(qcos(0), 32767);
    EXPECT_EQ(qcos(0x4000), 0);
    EXPECT_EQ(qcos(0x8000), -32767);
    EXPECT_EQ(qcos(0xC000), 0);
}

TEST_F(DrawingHelpers, SineOfTheTableEntriesIsExact) {
    const double pi = std::acos(-1.0);
    for (unsigned i = 0; i <= 128; ++i) {
        const auto expected = static_cast<int>(std::floor(32767 * std::sin(i * pi / 256)));
        EXPECT_EQ(qsin(static_cast<uint16_t>(i * 128)), expected) << i;
    }
}

TEST_F(DrawingHelpers, SineInterpolatesBetweenTableEntries) {
    EXPECT_EQ(qsin(64), 402 / 2);
    EXPECT_EQ(qsin(1), 402 / 128);
    EXPECT_EQ(qsin(4 * 128 + 127), 1607 + (127 * 402 >> 7));
    EXPECT_EQ(qsin(0x8000 + 64), -201);
}

TEST_F(DrawingHelpers, SineIsSymmetricAndCloseEverywhere) {
    const double pi = std::acos(-1.0);
    for (uint32_t a = 0; a < 0x10000; ++a) {
        const auto angle = static_cast<uint16_t>(a);
        ASSERT_NEAR(qsin(angle), 32767 * std::sin(a * pi / 0x8000), 3.5) << a;
        ASSERT_EQ(qsin(static_cast<uint16_t>(0x8000 - a)), qsin(angle)) << a;
        ASSERT_EQ(qsin(static_cast<uint16_t>(0x8000 + a)), -qsin(angle)) << a;
    }
}

TEST_F(DrawingHelpers, PolarPointsLieOnePixelToTheRight) {
    int x = 0;
    int y = 0;
    polarxy(0, 0, &x, &y, 100, 50);
    EXPECT_EQ(x, 1616);
    EXPECT_EQ(y, 800);
}

TEST_F(DrawingHelpers, PolarPointsTurnClockwiseFromTheTop) {
    int x = 0;
    int y = 0;
    polarxy(10, 0x4000, &x, &y, 100, 50);
    EXPECT_EQ(x, 1600 + (10 * 32767 >> 11) + 16);
    EXPECT_EQ(y, 800);
    polarxy(10, 0, &x, &y, 100, 50);
    EXPECT_EQ(x, 1616);
    EXPECT_EQ(y, 800 - (10 * 32767 >> 11));
    polarxy(10, 0xC000, &x, &y, 100, 50);
    EXPECT_EQ(x, 1600 + (10 * -32767 >> 11) + 16);
}

TEST_F(DrawingHelpers, PolarAnglesAreCutTo16BitsAndToWholeUnits) {
    int x = 0;
    int y = 0;
    polarxy(10, 65536.0F + 16384.0F + 0.5F, &x, &y, 100, 50);
    EXPECT_EQ(x, 1600 + 159 + 16);
    polarxy(10, -49152.0F, &x, &y, 100, 50);
    EXPECT_EQ(x, 1600 + 159 + 16);
}

TEST_F(DrawingHelpers, PolarAppendsAVertex) {
    polar(&host, 0, 0, 100, 50);
    polar(&host, 0, 0, -2, -1); // both coordinates end up negative
    App_Flush_Co_Buffer(&host);
    EXPECT_THAT(board.commandWords(), ElementsAre(0x40000000U | 1616U << 15 | 800U,
                                                  0x40000000U | 0x7FF0U << 15 | 0x7FF0U));
}

TEST_F(DrawingHelpers, PolarAppendsThePointThatPolarxyGives) {
    int x = 0;
    int y = 0;
    polarxy(10, 0x2000, &x, &y, 100, 50);
    polar(&host, 10, 0x2000, 100, 50);
    App_Flush_Co_Buffer(&host);
    EXPECT_NE(x, y);
    EXPECT_THAT(board.commandWords(), ElementsAre(0x40000000U | static_cast<uint32_t>(x) << 15 |
                                                  static_cast<uint32_t>(y)));
}

TEST_F(DrawingHelpers, AnglesRelativeToABase) {
    EXPECT_FLOAT_EQ(da(360, 0), 32768);
    EXPECT_FLOAT_EQ(da(0, 90), -8192);
    EXPECT_FLOAT_EQ(da(45.5F, 45), 0.5F * 32768 / 360);
}

TEST_F(DrawingHelpers, DesignUnitsScaleToThePanel) {
    scaling = (480 << 16) / 800;
    EXPECT_EQ(dc(0), 0);
    EXPECT_EQ(dc(800), 800 * 39321 >> 12);
    EXPECT_EQ(dc(-130), -130 * 39321 >> 12);
    scaling = 800 * 65536 / 800;
    EXPECT_EQ(dc(1), 16);
    EXPECT_EQ(dc(std::numeric_limits<int16_t>::min()), -524288);
}

TEST_F(DrawingHelpers, TweenStartsAndEndsWhereItIsTold) {
    EXPECT_EQ(tween(0xFFFF, -1000, 500), -1000 + (1500 * 65535 >> 16));
    EXPECT_EQ(tween(0, -1000, 500), -1000);
    EXPECT_EQ(tween(0, 7, 7), 7);
}

TEST_F(DrawingHelpers, TweenEasesOut) {
    // Half of the time: 7/8 of the way.
    EXPECT_EQ(tween(0x8000, 0, 8000), 7000);
    EXPECT_EQ(tween(0x8000, 8000, 0), 1000);
    EXPECT_EQ(tween(0x4000, 0, 65536), 37890);
    int last = 0;
    for (int t = 0; t < 0x10000; t += 0x100) {
        const int value = tween(t, 0, 16384);
        EXPECT_GE(value, last);
        last = value;
    }
}

TEST_F(DrawingHelpers, TweenIsExactToTheLastUnit) {
    // (0xFFFF - t) cubed, cut to 16 bits after each multiplication, taken from 0xFFFF.
    EXPECT_EQ(tween(1, 0, 65536), 5);
    EXPECT_EQ(tween(3, 0, 65536), 11);
    EXPECT_EQ(tween(0x1234, 0, 65536), 13012);
    EXPECT_EQ(tween(0x8001, 0, 65536), 57345);
    EXPECT_EQ(tween(0xFFFE, 0, 65536), 65535);
}

TEST_F(DrawingHelpers, TweenRoundsDown) {
    EXPECT_EQ(tween(0x4000, 0, 1), 0);
    EXPECT_EQ(tween(0x4000, 0, -1), -1);
}

TEST_F(DrawingHelpers, TweenTakesTheLow16BitsOfTheTime) {
    EXPECT_EQ(tween(0x12345678, 0, 1000), tween(0x5678, 0, 1000));
    EXPECT_EQ(tween(-1, 0, 1000), tween(0xFFFF, 0, 1000));
}

} // namespace
