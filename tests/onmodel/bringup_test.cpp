// The program's start on controllers of every generation: detection, bring-up, touch transform.

#include "App_Common.h"
#include "displaysettings.h"
#include "onmodel.h"
#include "startup.h"

#include <algorithm>
#include <cstdlib>

namespace {

using controller::Generation;
using modelboard::controller;

// The addresses that transfers began at.
class TransfersOnModel : public OnModel {
protected:
    const std::vector<std::uint32_t>& reads() const { return m_reads; }
    const std::vector<std::uint32_t>& writes() const { return m_writes; }

private:
    void transactionEnded(const controller::Transaction& transaction) override {
        const std::vector<std::uint8_t>& sent = transaction.sent;
        if (sent.size() <= 3) {
            return; // a host command
        }
        const bool writing = (sent[0] & 0xC0U) == 0x80U;
        (writing ? m_writes : m_reads)
            .push_back((sent[0] & 0x3FU) << 16U | std::uint32_t{sent[1]} << 8U | sent[2]);
    }

    std::vector<std::uint32_t> m_reads;
    std::vector<std::uint32_t> m_writes;
};

class BringUpOnModel : public TransfersOnModel, public testing::WithParamInterface<Generation> {};

INSTANTIATE_TEST_SUITE_P(Generations, BringUpOnModel, everyGeneration, generationOf);

TEST_P(BringUpOnModel, LeavesThePanelScanningSwitchedOnAndLit) {
    bringUp(GetParam());
    const controller::PanelState panel = controller().panel();
    EXPECT_TRUE(panel.scanning);
    EXPECT_TRUE(panel.displayOn);
    EXPECT_EQ(panel.backlight, 128);
    EXPECT_EQ(picture().width, 480);
    EXPECT_EQ(picture().height, 272);
}

TEST_P(BringUpOnModel, ScansAtTheRateOfThePanelsTimings) {
    bringUp(GetParam());
    // Clock / (PCLK x HCYCLE x VCYCLE) of the 4.3-inch panel.
    const double clock = GetParam() == Generation::E1 ? 48e6 : 60e6;
    EXPECT_NEAR(controller().panel().framesPerSecond, clock / (5.0 * 548 * 292), 0.01);
    const std::uint32_t before = controller().framesScanned();
    modelboard::pass(seconds(1));
    EXPECT_NEAR(controller().framesScanned() - before, clock / (5.0 * 548 * 292), 1.0);
}

TEST_P(BringUpOnModel, StartsThePixelClockAfterEverythingElse) {
    fit(GetParam());
    App_Common_Init(&host);
    EXPECT_EQ(writes().back(), EVE_REG("__REG_PCLK"));
    EXPECT_EQ(std::count(writes().begin(), writes().end(), EVE_REG("__REG_PCLK")), 1);
}

TEST_P(BringUpOnModel, ShowsABlackFrameFirst) {
    bringUp(GetParam());
    modelboard::pass(milliseconds(50));
    EXPECT_GT(controller().framesScanned(), 0U);
    EXPECT_EQ(controller().listsSwapped(), 1U);
    EXPECT_TRUE(std::all_of(picture().pixels.begin(), picture().pixels.end(),
                            [](std::uint32_t pixel) { return pixel == black; }));
}

TEST_P(BringUpOnModel, FindsTheRingWhereTheControllerHasIt) {
    bringUp(GetParam());
    EXPECT_EQ(host.cmd_write_offset, 0);
    EXPECT_TRUE(coprocessorIsIdle());
}

TEST_P(BringUpOnModel, TakesHalfASecondAtMost) {
    bringUp(GetParam());
    EXPECT_GT(modelboard::now(), milliseconds(340));
    EXPECT_LT(modelboard::now(), milliseconds(500));
}

TEST_P(BringUpOnModel, MayBeDoneAgain) {
    bringUp(GetParam());
    App_Common_Close(&host);
    App_Common_Init(&host);
    modelboard::pass(milliseconds(50));
    EXPECT_TRUE(controller().panel().scanning);
    EXPECT_TRUE(controller().panel().displayOn);
}

TEST_P(BringUpOnModel, ATouchReadsAsThePixelThatIsTouched) {
    bringUp(GetParam());
    for (const int x : {3, 120, 240, 476}) {
        for (const int y : {9, 136, 268}) {
            controller().touch(x, y);
            modelboard::pass(milliseconds(50));
            const std::uint32_t screen = controller().peek32(EVE_REG("__REG_TOUCH_SCREEN_XY"));
            EXPECT_LE(std::abs(static_cast<int>(screen >> 16) - x), 1) << x << ", " << y;
            EXPECT_LE(std::abs(static_cast<int>(screen & 0xFFFF) - y), 1) << x << ", " << y;
        }
    }
}

TEST_P(BringUpOnModel, WithoutTheTransformATouchReadsRawCoordinates) {
    fit(GetParam());
    App_Common_Init(&host);
    controller().touch(240, 136);
    modelboard::pass(milliseconds(50));
    EXPECT_EQ(controller().peek32(EVE_REG("__REG_TOUCH_SCREEN_XY")),
              controller().peek32(EVE_REG("__REG_TOUCH_RAW_XY")));
}

TEST_P(BringUpOnModel, WaitsForEverForAControllerThatDoesNotAnswer) {
    fit(GetParam());
    controller().setAnswering(false);
    giveUpAfter(seconds(10));
    EXPECT_THROW(App_Common_Init(&host), TookTooLong);
}

class DetectionOnModel : public TransfersOnModel {
protected:
    // Leaves the registry on the other generation first, so that a detection shows.
    static bool detectFrom(DisplaySettings::DisplayGeneration before) {
        DisplaySettings::getInstance()->setDisplayGeneration(before);
        return DisplaySettings::getInstance()->autoDetectDisplayGeneration();
    }

    static DisplaySettings::DisplayGeneration detected() {
        return DisplaySettings::getInstance()->getDisplayGeneration();
    }
};

TEST_F(DetectionOnModel, RecognisesE1) {
    fit(Generation::E1);
    EXPECT_TRUE(detectFrom(DisplaySettings::EVE_3));
    EXPECT_EQ(detected(), DisplaySettings::EVE_1);
}

TEST_F(DetectionOnModel, RecognisesE3) {
    fit(Generation::E3);
    EXPECT_TRUE(detectFrom(DisplaySettings::EVE_1));
    EXPECT_EQ(detected(), DisplaySettings::EVE_3);
    EXPECT_EQ(reads(), std::vector<std::uint32_t>{0x0C0000});
}

TEST_F(DetectionOnModel, GivesUpOnE2AndKeepsWhatItHad) {
    fit(Generation::E2);
    EXPECT_FALSE(detectFrom(DisplaySettings::EVE_1));
    EXPECT_EQ(detected(), DisplaySettings::EVE_1);
    EXPECT_EQ(reads(), std::vector<std::uint32_t>(10, 0x0C0000));
    EXPECT_THAT(writes(), testing::IsEmpty());
}

TEST_F(DetectionOnModel, GivesUpWithoutAController) {
    fit(Generation::E3);
    controller().setAnswering(false);
    EXPECT_FALSE(detectFrom(DisplaySettings::EVE_1));
}

TEST_F(DetectionOnModel, ForeignChipsAreNotRecognised) {
    fit(Generation::E3);
    controller().setIdentity(0x00011608);
    EXPECT_FALSE(detectFrom(DisplaySettings::EVE_1));
}

} // namespace
