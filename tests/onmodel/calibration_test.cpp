// The touch calibration screen, tapped by a finger that finds the dots on the panel's picture.

#include "App_Common.h"
#include "displaysettings.h"
#include "onmodel.h"

#include <cstdlib>

namespace {

using controller::Generation;
using modelboard::controller;
using testing::ElementsAre;

struct Pixel {
    int x;
    int y;
};

// The middle of what is white on the panel outside the line of text in its middle.
Pixel dotOnPanel() {
    const controller::Picture& picture = controller().frame().picture;
    int left = picture.width;
    int right = 0;
    int top = picture.height;
    int bottom = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const bool inText = y > 115 && y < 157 && x > 120 && x < 360;
            if (picture.at(x, y) == 0xFFFFFFFF && !inText) {
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
        }
    }
    EXPECT_LE(left, right) << "no dot";
    return {(left + right + 1) / 2, (top + bottom + 1) / 2};
}

class CalibrationOnModel : public OnModel, public testing::WithParamInterface<Generation> {
protected:
    // A finger taps the dot that the panel then shows, `away` from its middle.
    void tapDotAfter(controller::Nanoseconds delay, Pixel away = {0, 0}) {
        modelboard::after(delay, [this, away] {
            const Pixel dot = dotOnPanel();
            m_dots.push_back(dot.x * 1000 + dot.y);
            controller().touch(dot.x + away.x, dot.y + away.y);
        });
        modelboard::after(delay + milliseconds(100), [] { controller().release(); });
    }

    void tapThreeDots() {
        for (int tap = 0; tap < 3; ++tap) {
            tapDotAfter(milliseconds(200) * static_cast<controller::Nanoseconds>(tap + 1));
        }
    }

    // The screen, and what is left of the last tap when it returns.
    void calibrate() {
        App_Calibrate_Screen(&host);
        modelboard::pass(milliseconds(200));
    }

    // Where a touch of a pixel lands, in the controller's screen coordinates.
    static Pixel landing(Pixel touched) {
        controller().touch(touched.x, touched.y);
        modelboard::pass(milliseconds(50));
        const std::uint32_t screen = controller().peek32(EVE_REG("__REG_TOUCH_SCREEN_XY"));
        return {static_cast<int>(screen >> 16), static_cast<int>(screen & 0xFFFF)};
    }

    static void expectTouchesToLandWhereTheyAre() {
        for (const int x : {5, 48, 240, 432, 475}) {
            for (const int y : {9, 27, 136, 244, 268}) {
                const Pixel seen = landing({x, y});
                EXPECT_LE(std::abs(seen.x - x), 1) << x << ", " << y;
                EXPECT_LE(std::abs(seen.y - y), 1) << x << ", " << y;
            }
        }
    }

    std::vector<int> m_dots; // x * 1000 + y
};

INSTANTIATE_TEST_SUITE_P(Generations, CalibrationOnModel, everyGeneration, generationOf);

TEST_P(CalibrationOnModel, ThreeTapsOnTheDotsGiveTheTouchTransform) {
    fit(GetParam());
    App_Common_Init(&host); // the transform registers are still those of the reset
    tapThreeDots();
    calibrate();
    EXPECT_THAT(m_dots, ElementsAre(48027, 432136, 240244));
    expectTouchesToLandWhereTheyAre();
}

TEST_P(CalibrationOnModel, ShowsWhatToDoUntilTheLastTap) {
    bringUp(GetParam());
    tapThreeDots();
    std::vector<std::vector<std::string>> seen;
    modelboard::after(milliseconds(100), [&] { seen.push_back(controller().textOnPanel()); });
    modelboard::after(milliseconds(550), [&] { seen.push_back(controller().textOnPanel()); });
    App_Calibrate_Screen(&host);
    const std::vector<std::string> text = {"Please tap on a dot"};
    EXPECT_THAT(seen, ElementsAre(text, text));
    EXPECT_GT(modelboard::now(), milliseconds(600));
}

TEST_P(CalibrationOnModel, MendsAWrongTransform) {
    bringUp(GetParam());
    Gpu_Hal_Wr32(&host, EVE_REG("__REG_TOUCH_TRANSFORM_A"), 12345);
    EXPECT_GT(std::abs(landing({240, 136}).x - 240), 100);
    controller().release();
    modelboard::pass(milliseconds(50));
    tapThreeDots();
    calibrate();
    expectTouchesToLandWhereTheyAre();
}

TEST_P(CalibrationOnModel, TapsBesideTheDotsShiftTouchesByAsMuch) {
    bringUp(GetParam());
    for (int tap = 0; tap < 3; ++tap) {
        tapDotAfter(milliseconds(200) * static_cast<controller::Nanoseconds>(tap + 1), {6, 4});
    }
    calibrate();
    const Pixel seen = landing({240, 136});
    EXPECT_LE(std::abs(seen.x - 234), 1);
    EXPECT_LE(std::abs(seen.y - 132), 1);
}

TEST_P(CalibrationOnModel, AFingerThatStaysCountsOnce) {
    bringUp(GetParam());
    modelboard::after(milliseconds(100), [] { controller().touch(48, 27); });
    giveUpAfter(seconds(2));
    EXPECT_THROW(App_Calibrate_Screen(&host), TookTooLong);
}

TEST_P(CalibrationOnModel, WaitsForEverForTheThirdTap) {
    bringUp(GetParam());
    tapDotAfter(milliseconds(200));
    tapDotAfter(milliseconds(400));
    giveUpAfter(seconds(2));
    EXPECT_THROW(App_Calibrate_Screen(&host), TookTooLong);
    EXPECT_THAT(m_dots, ElementsAre(48027, 432136));
}

} // namespace
