#include "assertionfailure.h"
#include "displaysettings.h"
#include "generationtable.h"
#include "paneltimings.h"
#include "recordingboard.h"

#include <cstdint>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr uint32_t chipIdAddress = 0xC0000;

void expectUnknown(DisplaySettings& settings, const QString& name) {
    EXPECT_ASSERTION_FAILURE(settings[name], "eve_layer/displaysettings.cpp", 1119,
                             "uint32_t DisplaySettings::operator[](QString)", "false");
}

// ---- The registry ----

TEST(DisplaySettings, StartsWithGenerationOneAndThe43InchPanel) {
    DisplaySettings settings;
    EXPECT_EQ(settings.getDisplayGeneration(), DisplaySettings::EVE_1);
    EXPECT_EQ(settings.getDisplaySize(), DisplaySettings::Size_43);
    EXPECT_EQ(settings[QStringLiteral("__REG_ID")], 0x102400U);
    EXPECT_EQ(settings[QStringLiteral("__DispWidth")], 480U);
}

TEST(DisplaySettings, HasOneInstance) {
    EXPECT_EQ(DisplaySettings::getInstance(), DisplaySettings::getInstance());
}

TEST(DisplaySettings, LooksUpLiteralsInTheOneInstance) {
    DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_2);
    EXPECT_EQ(EVE_REG("__RAM_CMD"), 0x308000U);
    EXPECT_EQ(EVE_REG("__CMD_TEXT"), 0xFFFFFF0CU);
    EXPECT_EQ(EVE_REG("__DispHeight"), 272U);
}

TEST(DisplaySettings, NumbersGenerationsAndSizesFrom0) {
    using S = DisplaySettings;
    EXPECT_EQ((std::vector<uint32_t>{S::EVE_1, S::EVE_2, S::EVE_3}),
              (std::vector<uint32_t>{0, 1, 2}));
    EXPECT_EQ((std::vector<uint32_t>{S::Size_35, S::Size_43, S::Size_50, S::Size_70}),
              (std::vector<uint32_t>{0, 1, 2, 3}));
}

TEST(DisplaySettings, NamesGenerations) {
    using S = DisplaySettings;
    EXPECT_EQ(S::displayGenerationToString(S::EVE_1), QLatin1String("EVE_1"));
    EXPECT_EQ(S::displayGenerationToString(S::EVE_2), QLatin1String("EVE_2"));
    EXPECT_EQ(S::displayGenerationToString(S::EVE_3), QLatin1String("EVE_3"));
}

TEST(DisplaySettings, NamesAnUnknownGenerationLikeTheThird) {
    EXPECT_EQ(DisplaySettings::displayGenerationToString(
                  static_cast<DisplaySettings::DisplayGeneration>(7)),
              QLatin1String("EVE_3"));
}

TEST(DisplaySettings, NamesSizes) {
    using S = DisplaySettings;
    EXPECT_EQ(S::displaySizeToString(S::Size_35), QLatin1String("Size_35"));
    EXPECT_EQ(S::displaySizeToString(S::Size_43), QLatin1String("Size_43"));
    EXPECT_EQ(S::displaySizeToString(S::Size_50), QLatin1String("Size_50"));
    EXPECT_EQ(S::displaySizeToString(S::Size_70), QLatin1String("Size_70"));
}

TEST(DisplaySettings, GivesANullStringForAnUnknownSize) {
    EXPECT_TRUE(DisplaySettings::displaySizeToString(static_cast<DisplaySettings::DisplaySize>(7))
                    .isNull());
}

TEST(DisplaySettings, AnswersEveryNameOfEachGeneration) {
    for (std::size_t generation = 0; generation < 3; ++generation) {
        DisplaySettings settings;
        settings.setDisplayGeneration(static_cast<DisplaySettings::DisplayGeneration>(generation));
        for (const GenerationRow& row : generationTable()) {
            if (row.values[generation]) {
                EXPECT_EQ(settings[row.name.toString()], *row.values[generation]);
            }
        }
    }
}

TEST(DisplaySettings, AnswersEveryTimingOfEachSize) {
    DisplaySettings settings;
    for (std::size_t size = 0; size < 4; ++size) {
        settings.setDisplaySize(static_cast<DisplaySettings::DisplaySize>(size));
        for (const PanelTimingRow& row : panelTimings()) {
            if (row.values[size]) {
                EXPECT_EQ(settings[row.name.toString()], *row.values[size]);
            }
        }
    }
}

TEST(DisplaySettings, KeepsNamesThatOnlyTheFormerGenerationHas) {
    DisplaySettings settings;
    settings.setDisplayGeneration(DisplaySettings::EVE_3);
    EXPECT_EQ(settings[QStringLiteral("__REG_ID")], 0x302000U);
    EXPECT_EQ(settings[QStringLiteral("__RAM_PAL")], 0x102000U);
    EXPECT_EQ(settings[QStringLiteral("__CMD_IDCT")], 0xFFFFFF06U);
    EXPECT_EQ(settings[QStringLiteral("__CMD_CSKETCH")], 0xFFFFFF35U);
    EXPECT_EQ(settings[QStringLiteral("__INCR_WRAP")], 6U);
    EXPECT_EQ(settings[QStringLiteral("__DECR_WRAP")], 7U);
    EXPECT_EQ(settings[QStringLiteral("__REG_CTOUCH_GESTURE")], 0x102538U);
    EXPECT_EQ(settings[QStringLiteral("__REG_CTOUCH_IDS")], 0x10250CU);
}

TEST(DisplaySettings, OverwritesNamesOnTheWayBackToo) {
    DisplaySettings settings;
    settings.setDisplayGeneration(DisplaySettings::EVE_3);
    settings.setDisplayGeneration(DisplaySettings::EVE_1);
    EXPECT_EQ(settings[QStringLiteral("__REG_ID")], 0x102400U);
    EXPECT_EQ(settings[QStringLiteral("__CMD_FLASHREAD")], 0xFFFFFF46U);
}

// What the table says of a generation or size, as the settings have it.
template<typename Row>
std::vector<uint32_t> valuesOf(DisplaySettings& settings, const RegistryTable<Row>& table,
                               std::size_t variant) {
    std::vector<uint32_t> values;
    for (const Row& row : table) {
        if (row.values.at(variant)) {
            values.push_back(settings[row.name.toString()]);
        }
    }
    return values;
}

TEST(DisplaySettings, StoresAnUnknownGenerationAndAssignsNothing) {
    DisplaySettings settings;
    const std::vector<uint32_t> before =
        valuesOf(settings, generationTable(), DisplaySettings::EVE_1);
    const auto unknown = static_cast<DisplaySettings::DisplayGeneration>(3);
    settings.setDisplayGeneration(unknown);
    EXPECT_EQ(settings.getDisplayGeneration(), unknown);
    EXPECT_EQ(settings[QStringLiteral("__REG_ID")], 0x102400U);
    EXPECT_EQ(valuesOf(settings, generationTable(), DisplaySettings::EVE_1), before);
}

TEST(DisplaySettings, KeepsGenerationAndSizeApart) {
    DisplaySettings settings;
    settings.setDisplaySize(DisplaySettings::Size_70);
    settings.setDisplayGeneration(DisplaySettings::EVE_3);
    EXPECT_EQ(settings.getDisplaySize(), DisplaySettings::Size_70);
    EXPECT_EQ(settings[QStringLiteral("__DispWidth")], 800U);
    settings.setDisplaySize(DisplaySettings::Size_35);
    EXPECT_EQ(settings.getDisplayGeneration(), DisplaySettings::EVE_3);
    EXPECT_EQ(settings[QStringLiteral("__REG_ID")], 0x302000U);
}

TEST(DisplaySettingsDeathTest, ANameInNeitherMapFailsTheAssertion) {
    DisplaySettings settings;
    expectUnknown(settings, QStringLiteral("__REG_NONE"));
}

TEST(DisplaySettingsDeathTest, NamesAreExactAndCaseSensitive) {
    DisplaySettings settings;
    expectUnknown(settings, QStringLiteral("REG_ID"));
    expectUnknown(settings, QStringLiteral("__reg_id"));
    expectUnknown(settings, QStringLiteral("__REG_ID "));
    expectUnknown(settings, {});
}

TEST(DisplaySettingsDeathTest, GenerationOneLacksLaterNames) {
    DisplaySettings settings;
    expectUnknown(settings, QStringLiteral("__REG_SPI_WIDTH"));
    expectUnknown(settings, QStringLiteral("__REG_CMDB_WRITE"));
    expectUnknown(settings, QStringLiteral("__CMD_SETBITMAP"));
    expectUnknown(settings, QStringLiteral("__CMD_FLASHREAD"));
}

TEST(DisplaySettingsDeathTest, ALookUpAddsNoName) {
    DisplaySettings settings;
    expectUnknown(settings, QStringLiteral("__CMD_FLASHREAD"));
    expectUnknown(settings, QStringLiteral("__CMD_FLASHREAD"));
}

TEST(DisplaySettingsDeathTest, AChangeOfSizeLeavesNoFormerTiming) {
    DisplaySettings settings;
    EXPECT_EQ(settings[QStringLiteral("__DispRotate")], 0U);
    settings.setDisplaySize(DisplaySettings::Size_70);
    EXPECT_EQ(settings[QStringLiteral("__DispDither")], 1U);
    expectUnknown(settings, QStringLiteral("__DispRotate"));
    settings.setDisplaySize(DisplaySettings::Size_50);
    expectUnknown(settings, QStringLiteral("__DispDither"));
}

TEST(DisplaySettingsDeathTest, AnUnknownSizeIsStoredAndLeavesNoTimings) {
    DisplaySettings settings;
    const auto unknown = static_cast<DisplaySettings::DisplaySize>(4);
    settings.setDisplaySize(unknown);
    EXPECT_EQ(settings.getDisplaySize(), unknown);
    expectUnknown(settings, QStringLiteral("__DispWidth"));
}

// ---- Detection of the generation ----

class GenerationDetection : public testing::Test {
protected:
    GenerationDetection() { board.reset(); }

    static std::vector<Transaction> reads() { return board.transactions(Transaction::Read); }

    DisplaySettings settings;
};

TEST_F(GenerationDetection, FindsGenerationThree) {
    board.poke(chipIdAddress, 0x00011508);
    EXPECT_TRUE(settings.autoDetectDisplayGeneration());
    EXPECT_EQ(settings.getDisplayGeneration(), DisplaySettings::EVE_3);
    EXPECT_EQ(settings[QStringLiteral("__REG_ID")], 0x302000U);
    EXPECT_EQ(settings[QStringLiteral("__CMD_FLASHREAD")], 0xFFFFFF46U);
    EXPECT_EQ(settings[QStringLiteral("__RAM_PAL")], 0x102000U);
    EXPECT_THAT(reads(), ElementsAre(Transaction::read32(chipIdAddress, 0x00011508)));
}

TEST_F(GenerationDetection, FindsGenerationOne) {
    board.poke(chipIdAddress, 0x00010108);
    EXPECT_TRUE(settings.autoDetectDisplayGeneration());
    EXPECT_EQ(settings.getDisplayGeneration(), DisplaySettings::EVE_1);
    EXPECT_EQ(settings[QStringLiteral("__REG_ID")], 0x102400U);
    EXPECT_THAT(reads(), SizeIs(1));
}

TEST_F(GenerationDetection, NeverRecognisesGenerationTwo) {
    board.poke(chipIdAddress, 0x00011308);
    EXPECT_FALSE(settings.autoDetectDisplayGeneration());
    EXPECT_EQ(settings.getDisplayGeneration(), DisplaySettings::EVE_1);
    EXPECT_EQ(settings[QStringLiteral("__REG_ID")], 0x102400U);
    EXPECT_THAT(reads(), SizeIs(10));
}

TEST_F(GenerationDetection, GivesUpOnASilentControllerAfterTenReads) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(settings.autoDetectDisplayGeneration());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(settings.getDisplayGeneration(), DisplaySettings::EVE_1);
    EXPECT_EQ(reads(), std::vector<Transaction>(10, Transaction::read32(chipIdAddress, 0)));
}

TEST_F(GenerationDetection, RetriesUntilTheIdIsReadable) {
    board.queueReads(chipIdAddress, {0, 0xFFFFFFFF, 0x00011508});
    EXPECT_TRUE(settings.autoDetectDisplayGeneration());
    EXPECT_EQ(settings.getDisplayGeneration(), DisplaySettings::EVE_3);
    EXPECT_THAT(reads(), SizeIs(3));
}

TEST_F(GenerationDetection, AcceptsTheIdAtTheTenthRead) {
    board.queueReads(chipIdAddress, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0x00010108});
    EXPECT_TRUE(settings.autoDetectDisplayGeneration());
    EXPECT_THAT(reads(), SizeIs(10));
}

TEST_F(GenerationDetection, PowersUpBeforeTheRead) {
    board.poke(chipIdAddress, 0x00011508);
    settings.autoDetectDisplayGeneration();
    EXPECT_THAT(board.events(),
                ElementsAre("init",                                      //
                            "PD high", "CS high", "open",                //
                            "PD low", "sleep 20", "PD high", "sleep 20", //
                            "CS low", "send 44 00 00", "CS high",        //
                            "CS low", "send 62 00 00", "CS high",        //
                            "CS low", "send 00 00 00", "CS high",        //
                            "sleep 100",                                 //
                            "CS low", "send 0C 00 00 00",                //
                            "exchange 00 -> 08", "exchange 00 -> 15",    //
                            "exchange 00 -> 01", "exchange 00 -> 00", "CS high"));
}

TEST_F(GenerationDetection, DoesNotPauseBetweenReads) {
    settings.autoDetectDisplayGeneration();
    EXPECT_EQ(board.sleptMs(), 20U + 20U + 100U);
}

TEST_F(GenerationDetection, SetsTheSpiWidthFirstWhenGenerationOneIsNotInForce) {
    DisplaySettings* shared = DisplaySettings::getInstance();
    shared->setDisplayGeneration(DisplaySettings::EVE_3);
    board.poke(chipIdAddress, 0x00010108);
    EXPECT_TRUE(shared->autoDetectDisplayGeneration());
    EXPECT_THAT(board.transactions(),
                ElementsAre(Transaction::write8(0x302188, 0), Transaction::hostCommand(0x44),
                            Transaction::hostCommand(0x62), Transaction::hostCommand(0x00),
                            Transaction::read32(chipIdAddress, 0x00010108)));
    EXPECT_EQ(shared->getDisplayGeneration(), DisplaySettings::EVE_1);
}

} // namespace
