#include "CoPro_Cmds.h"
#include "assertionfailure.h"
#include "drawingtest.h"
#include "guardline.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <ostream>
#include <string>
#include <utility>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::HasSubstr;

using Host = Gpu_Hal_Context_t;

constexpr auto eve1 = DisplaySettings::EVE_1;
constexpr auto eve2 = DisplaySettings::EVE_2;
constexpr auto eve3 = DisplaySettings::EVE_3;

constexpr const char* eve2Text = R"(!EVE1 && "this function is worked only on EVE2 or EVE3")";
constexpr const char* eve3Text = R"(EVE3 && "This function worked only on EVE3 device")";

// Expects `call` to fail the assertion of a guarded function before anything is appended.
void expectFailure(void (*call)(Host*), const std::string& function, const std::string& text) {
    EXPECT_EXIT(abortUntouched([call] {
                    Host host;
                    call(&host);
                }),
                ExitedWithCode(failedUntouched),
                AllOf(NamesALineWithAGuard(), HasSubstr(": " + signatureAsCompiled(function) +
                                                        ": Assertion `" + text + "' failed.\n")));
}

struct Case {
    const char* name;
    DisplaySettings::DisplayGeneration since; // the first generation that has it
    const char* types; // of the arguments behind the context; of guarded commands only
    void (*call)(Host*);
    Words words;
};

// Names the case in test listings.
void PrintTo(const Case& each, std::ostream* out) {
    *out << each.name;
}

std::string signature(const Case& each) {
    const std::string types = each.types;
    return std::string("void Gpu_CoCmd_") + each.name + "(Gpu_Hal_Context_t*" +
           (types.empty() ? "" : ", " + types) + ")";
}

Case makeCase(const char* name, DisplaySettings::DisplayGeneration since, const char* types,
              void (*call)(Host*), const Words& words) {
    return {name, since, types, call, words};
}

// A command, the first generation that has it, the types of its arguments where a message names
// them, a call, and the words that the call is to send.
#define COMMAND(name, since, types, arguments, ...)                                                \
    makeCase(#name, since, types, [](Host* h) { Gpu_CoCmd_##name arguments; }, {__VA_ARGS__})

const Case cases[] = {
    COMMAND(LoadIdentity, eve1, "", (h), 0xFFFFFF26),
    COMMAND(Swap, eve1, "", (h), 0xFFFFFF01),
    COMMAND(Stop, eve1, "", (h), 0xFFFFFF17),
    COMMAND(Logo, eve1, "", (h), 0xFFFFFF31),
    COMMAND(SetMatrix, eve1, "", (h), 0xFFFFFF2A),
    COMMAND(ColdStart, eve1, "", (h), 0xFFFFFF32),
    COMMAND(Dlstart, eve1, "", (h), 0xFFFFFF00),
    COMMAND(ScreenSaver, eve1, "", (h), 0xFFFFFF2F),
    COMMAND(VideoStart, eve2, "", (h), 0xFFFFFF40),
    COMMAND(Sync, eve2, "", (h), 0xFFFFFF42),
    COMMAND(VideoStartF, eve3, "", (h), 0xFFFFFF5F),
    COMMAND(Nop, eve3, "", (h), 0xFFFFFF5B),
    COMMAND(ClearCache, eve3, "", (h), 0xFFFFFF4F),
    COMMAND(ResetFonts, eve3, "", (h), 0xFFFFFF52),
    COMMAND(BgColor, eve1, "", (h, 0x112233), 0xFFFFFF09, 0x00112233),
    COMMAND(FgColor, eve1, "", (h, 0x00A1DD), 0xFFFFFF0A, 0x0000A1DD),
    COMMAND(GradColor, eve1, "", (h, 0xFFFFFF), 0xFFFFFF34, 0x00FFFFFF),
    COMMAND(Inflate, eve1, "", (h, 2000), 0xFFFFFF22, 0x000007D0),
    COMMAND(Interrupt, eve1, "", (h, 1000), 0xFFFFFF02, 0x000003E8),
    COMMAND(Rotate, eve1, "", (h, -16384), 0xFFFFFF29, 0xFFFFC000),
    COMMAND(Calibrate, eve1, "", (h, 0), 0xFFFFFF15, 0x00000000),
    COMMAND(GetPtr, eve1, "", (h, 7), 0xFFFFFF23, 0x00000007),
    COMMAND(Snapshot, eve1, "", (h, 0x1000), 0xFFFFFF1F, 0x00001000),
    COMMAND(Translate, eve1, "", (h, 65536, -65536), 0xFFFFFF27, 0x00010000, 0xFFFF0000),
    COMMAND(Scale, eve1, "", (h, 39321, 131072), 0xFFFFFF28, 0x00009999, 0x00020000),
    COMMAND(MemWrite, eve1, "", (h, 16, 8), 0xFFFFFF1A, 0x00000010, 0x00000008),
    COMMAND(SetFont, eve1, "", (h, 7, 1000), 0xFFFFFF2B, 0x00000007, 0x000003E8),
    COMMAND(Append, eve1, "", (h, 100000, 252), 0xFFFFFF1E, 0x000186A0, 0x000000FC),
    COMMAND(MemZero, eve1, "", (h, 1, 2), 0xFFFFFF1C, 0x00000001, 0x00000002),
    COMMAND(LoadImage, eve1, "", (h, 4, 2), 0xFFFFFF24, 0x00000004, 0x00000002),
    COMMAND(GetProps, eve1, "", (h, 1, 2, 3), 0xFFFFFF25, 0x00000001, 0x00000002, 0x00000003),
    COMMAND(Memcpy, eve1, "", (h, 100000, 0x300000, 64), 0xFFFFFF1D, 0x000186A0, 0x00300000,
            0x00000040),
    COMMAND(MemSet, eve1, "", (h, 1, 255, 3), 0xFFFFFF1B, 0x00000001, 0x000000FF, 0x00000003),
    COMMAND(MemCrc, eve1, "", (h, 1, 2, 3), 0xFFFFFF18, 0x00000001, 0x00000002, 0x00000003),
    COMMAND(GetMatrix, eve1, "", (h, 1, 2, 3, 4, 5, 6), 0xFFFFFF33, 0x00000001, 0x00000002,
            0x00000003, 0x00000004, 0x00000005, 0x00000006),
    COMMAND(TouchTransform, eve1, "", (h, -1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, -12, 13), 0xFFFFFF20,
            0xFFFFFFFF, 0x00000002, 0x00000003, 0x00000004, 0x00000005, 0x00000006, 0x00000007,
            0x00000008, 0x00000009, 0x0000000A, 0x0000000B, 0xFFFFFFF4, 0x0000000D),
    COMMAND(BitmapTransform, eve1, "", (h, -1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, -12, 13), 0xFFFFFF21,
            0xFFFFFFFF, 0x00000002, 0x00000003, 0x00000004, 0x00000005, 0x00000006, 0x00000007,
            0x00000008, 0x00000009, 0x0000000A, 0x0000000B, 0xFFFFFFF4, 0x0000000D),
    COMMAND(RegRead, eve1, "", (h, 0x302000, 0x12345678), 0xFFFFFF19, 0x00302000, 0x00000000),
    COMMAND(SetScratch, eve2, "uint32_t", (h, 15), 0xFFFFFF3C, 0x0000000F),
    COMMAND(SetBase, eve2, "uint32_t", (h, 16), 0xFFFFFF38, 0x00000010),
    COMMAND(PlayVideo, eve2, "uint32_t", (h, 0x10), 0xFFFFFF3A, 0x00000010),
    COMMAND(Int_RAMShared, eve2, "uint32_t", (h, 8), 0xFFFFFF3D, 0x00000008),
    COMMAND(SetRotate, eve2, "uint32_t", (h, 2), 0xFFFFFF36, 0x00000002),
    COMMAND(VideoFrame, eve2, "uint32_t, uint32_t", (h, 4, 8), 0xFFFFFF41, 0x00000004, 0x00000008),
    COMMAND(RomFont, eve2, "uint32_t, uint32_t", (h, 1, 34), 0xFFFFFF3F, 0x00000001, 0x00000022),
    COMMAND(Int_SWLoadImage, eve2, "uint32_t, uint32_t", (h, 4, 2), 0xFFFFFF3E, 0x00000004,
            0x00000002),
    COMMAND(MediaFifo, eve2, "uint32_t, uint32_t", (h, 0x10000, 0x4000), 0xFFFFFF39, 0x00010000,
            0x00004000),
    COMMAND(SetFont2, eve2, "uint32_t, uint32_t, uint32_t", (h, 7, 1000, 32), 0xFFFFFF3B,
            0x00000007, 0x000003E8, 0x00000020),
    COMMAND(FillWidth, eve3, "uint32_t", (h, 200), 0xFFFFFF58, 0x000000C8),
    COMMAND(Int_RamShared, eve3, "uint32_t", (h, 8), 0xFFFFFF3D, 0x00000008),
    COMMAND(AnimStop, eve3, "uint32_t", (h, 31), 0xFFFFFF54, 0x0000001F),
    COMMAND(AnimDraw, eve3, "uint32_t", (h, 5), 0xFFFFFF56, 0x00000005),
    COMMAND(Inflate2, eve3, "uint32_t, uint32_t", (h, 4, 0x40), 0xFFFFFF50, 0x00000004, 0x00000040),
    COMMAND(AppendF, eve3, "uint32_t, uint32_t", (h, 4096, 8), 0xFFFFFF59, 0x00001000, 0x00000008),
    COMMAND(RotateAround, eve3, "int32_t, int32_t, int32_t, int32_t", (h, 240, -136, -16384, 65536),
            0xFFFFFF51, 0x000000F0, 0xFFFFFF78, 0xFFFFC000, 0x00010000),
    COMMAND(Sha1, eve3, "uint32_t, uint32_t, uint32_t", (h, 1, 2, 3), 0xFFFFFF5C, 0x00000001,
            0x00000002, 0x00000003),
    COMMAND(AnimStart, eve3, "uint32_t, uint32_t, uint32_t", (h, 1, 4096, 2), 0xFFFFFF53,
            0x00000001, 0x00001000, 0x00000002),
    COMMAND(Text, eve1, "", (h, 240, -83, 31, 0x600, "Wait"), 0xFFFFFF0C, 0xFFAD00F0, 0x0600001F,
            0x74696157, 0x00000000),
    COMMAND(Button, eve1, "", (h, 429, 8, 40, 30, 27, 0x100, ""), 0xFFFFFF0D, 0x000801AD,
            0x001E0028, 0x0100001B, 0x00000000),
    COMMAND(Toggle, eve1, "", (h, 1, 2, 3, 27, 0x100, 0xFFFF, "n\xFFy"), 0xFFFFFF12, 0x00020001,
            0x001B0003, 0xFFFF0100, 0x0079FF6E),
    COMMAND(Number, eve1, "", (h, 1, 2, 29, 0x600, 12345), 0xFFFFFF2E, 0x00020001, 0x0600001D,
            0x00003039),
    COMMAND(Keys, eve1, "", (h, 10, 122, 460, 40, 29, 0x100, "12345"), 0xFFFFFF0E, 0x007A000A,
            0x002801CC, 0x0100001D, 0x34333231, 0x00000035),
    COMMAND(Gauge, eve1, "", (h, -1, 2, 3, 0x100, 5, 6, 7, 65535), 0xFFFFFF13, 0x0002FFFF,
            0x01000003, 0x00060005, 0xFFFF0007),
    COMMAND(Clock, eve1, "", (h, 1, -2, 3, 0xC000, 23, 59, 58, 999), 0xFFFFFF14, 0xFFFE0001,
            0xC0000003, 0x003B0017, 0x03E7003A),
    COMMAND(Dial, eve1, "", (h, 1, 2, 3, 0x100, 0x8000), 0xFFFFFF2D, 0x00020001, 0x01000003,
            0x00008000),
    COMMAND(Slider, eve1, "", (h, 1, 2, 3, 4, 5, 6, 7), 0xFFFFFF10, 0x00020001, 0x00040003,
            0x00060005, 0x00000007),
    COMMAND(Progress, eve1, "", (h, 1, 2, 3, 4, 5, 6, 7), 0xFFFFFF0F, 0x00020001, 0x00040003,
            0x00060005, 0x00000007),
    COMMAND(Scrollbar, eve1, "", (h, 1, 2, 3, 4, 5, 6, 7, 8), 0xFFFFFF11, 0x00020001, 0x00040003,
            0x00060005, 0x00080007),
    COMMAND(Track, eve1, "", (h, 1, 2, 3, 4, 5), 0xFFFFFF2C, 0x00020001, 0x00040003, 0x00000005),
    COMMAND(Spinner, eve1, "", (h, 236, 196, 3, 1), 0xFFFFFF16, 0x00C400EC, 0x00010003),
    COMMAND(Sketch, eve1, "", (h, 1, 2, 3, 4, 5, 6), 0xFFFFFF30, 0x00020001, 0x00040003, 0x00000005,
            0x00000006),
    COMMAND(Gradient, eve1, "", (h, 21, 13, 0xCACACA, 455, 268, 0xF3F3F3), 0xFFFFFF0B, 0x000D0015,
            0x00CACACA, 0x010C01C7, 0x00F3F3F3),
    COMMAND(SetBitmap, eve2, "uint32_t, uint16_t, int16_t, uint32_t", (h, 2000, 6, 24, 36),
            0xFFFFFF43, 0x000007D0, 0x00180006, 0x00000024),
    COMMAND(Snapshot2, eve2, "uint32_t, uint32_t, int16_t, int16_t, int16_t, int16_t",
            (h, 32, 4, -1, 2, 3, 4), 0xFFFFFF37, 0x00000020, 0x00000004, 0x0002FFFF, 0x00040003),
    COMMAND(GradientA, eve3, "int16_t, int16_t, uint32_t, int16_t, int16_t, uint32_t",
            (h, 1, 2, 0x80112233, 3, 4, 0xFF445566), 0xFFFFFF57, 0x00020001, 0x80112233, 0x00040003,
            0xFF445566),
    COMMAND(GetPoint, eve3, "int16_t, int16_t, int32_t, int32_t", (h, 1, 2, 3, -4), 0xFFFFFF08,
            0x00020001, 0x00000003, 0xFFFFFFFC),
    COMMAND(AnimXY, eve3, "uint32_t, int16_t, int16_t", (h, 3, 1, 2), 0xFFFFFF55, 0x00000003,
            0x00020001),
    COMMAND(AnimFrame, eve3, "int16_t, int16_t, uint32_t, uint32_t", (h, 1, 2, 4096, 5), 0xFFFFFF5A,
            0x00020001, 0x00001000, 0x00000005),
};

std::string caseName(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

class Command : public DrawingTest, public testing::WithParamInterface<Case> {};

TEST_P(Command, SendsItsWordsOnEveryGenerationThatHasIt) {
    for (const auto generation : {eve1, eve2, eve3}) {
        if (generation < GetParam().since) {
            continue;
        }
        SCOPED_TRACE(generation);
        use(generation);
        board.reset();
        Gpu_Hal_ResetCmdFifo(&host);
        App_Set_CmdBuffer_Index(0);
        GetParam().call(&host);
        EXPECT_EQ(flushedWords(), GetParam().words);
    }
}

INSTANTIATE_TEST_SUITE_P(CoPro, Command, testing::ValuesIn(cases), caseName);

class GuardedCommandDeathTest : public Command {};

TEST_P(GuardedCommandDeathTest, AbortsOnAGenerationThatLacksItBeforeAnythingIsAppended) {
    const bool eve3Only = GetParam().since == eve3;
    use(eve1);
    expectFailure(GetParam().call, signature(GetParam()), eve3Only ? eve3Text : eve2Text);
    if (eve3Only) {
        use(eve2);
        expectFailure(GetParam().call, signature(GetParam()), eve3Text);
    }
}

std::vector<Case> guardedCases() {
    std::vector<Case> guarded;
    std::copy_if(std::begin(cases), std::end(cases), std::back_inserter(guarded),
                 [](const Case& each) { return each.since != eve1; });
    return guarded;
}

INSTANTIATE_TEST_SUITE_P(CoPro, GuardedCommandDeathTest, testing::ValuesIn(guardedCases()),
                         caseName);

// --- what commands are made of

class CoProTest : public DrawingTest {};

TEST_F(CoProTest, WordsAndStringsAreAppendedAndTheHooksDoNothing) {
    Gpu_CoCmd_StartFunc(&host, 12);
    Gpu_Copro_SendCmd(&host, 0xFFFFFF0C);
    Gpu_CoCmd_SendStr(&host, "abc");
    Gpu_CoCmd_EndFunc(&host, 12);
    EXPECT_TRUE(board.events().empty());
    EXPECT_EQ(CmdBuffer_Index, 8U);
    EXPECT_THAT(flushedWords(), ElementsAre(0xFFFFFF0C, 0x00636261));
}

TEST_F(CoProTest, CommandsStayInTheBufferUntilItIsFlushed) {
    Gpu_CoCmd_Dlstart(&host);
    Gpu_CoCmd_Swap(&host);
    EXPECT_TRUE(board.events().empty());
    EXPECT_THAT(flushedWords(), ElementsAre(0xFFFFFF00, 0xFFFFFF01));
}

TEST_F(CoProTest, RegReadSendsZeroWhateverTheResultArgumentHolds) {
    Gpu_CoCmd_RegRead(&host, 0x10, 0);
    Gpu_CoCmd_RegRead(&host, 0x10, 0xFFFFFFFF);
    EXPECT_THAT(flushedWords(), ElementsAre(0xFFFFFF19, 0x10, 0, 0xFFFFFF19, 0x10, 0));
}

// --- text with values

constexpr uint16_t optFormat = 0x1000;

struct Formatted {
    const char* name;
    void (*call)(Host*);
    Words words;
};
void PrintTo(const Formatted& each, std::ostream* out) {
    *out << each.name;
}

const Formatted formatted[] = {
    {"TextSendsAWordPerPercentSign",
     [](Host* h) { Gpu_CoCmd_Text(h, 1, 2, 3, optFormat, "%d%%%d", 0xAABBCCDDU, 7U, 8U); },
     {0xFFFFFF0C, 0x00020001, 0x10000003, 0x25256425, 0x00006425, 0xAABBCCDD, 7}},
    {"ButtonDoesToo",
     [](Host* h) { Gpu_CoCmd_Button(h, 1, 2, 3, 4, 5, optFormat, "%d%d%d", 1U, 2U, 3U); },
     {0xFFFFFF0D, 0x00020001, 0x00040003, 0x10000005, 0x64256425, 0x00006425, 1, 2, 3}},
    {"ToggleDoesToo",
     [](Host* h) { Gpu_CoCmd_Toggle(h, 1, 2, 3, 4, optFormat, 5, "%d\xFF%d", 4U, 5U); },
     {0xFFFFFF12, 0x00020001, 0x00040003, 0x00051000, 0x25FF6425, 0x00000064, 4, 5}},
    {"NoValuesWithoutTheOption",
     [](Host* h) { Gpu_CoCmd_Text(h, 1, 2, 3, 0xEFFF, "%d", 7U); },
     {0xFFFFFF0C, 0x00020001, 0xEFFF0003, 0x00006425}},
};

class FormattedText : public DrawingTest, public testing::WithParamInterface<Formatted> {};

TEST_P(FormattedText, SendsItsWordsOnEve3) {
    GetParam().call(&host);
    EXPECT_EQ(flushedWords(), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(CoPro, FormattedText, testing::ValuesIn(formatted),
                         [](const auto& instance) { return instance.param.name; });

// COUNT_ARGS() would end the process there.
TEST_F(CoProTest, TheFormatOptionBitSendsNoValuesAndCountsNothingBeforeEve3) {
    for (const auto generation : {eve1, eve2}) {
        use(generation);
        board.reset();
        Gpu_Hal_ResetCmdFifo(&host);
        Gpu_CoCmd_Text(&host, 1, 2, 3, optFormat, "%d", 7U);
        EXPECT_THAT(flushedWords(), ElementsAre(0xFFFFFF0C, 0x00020001, 0x10000003, 0x00006425));
    }
}

TEST_F(CoProTest, CountArgsCountsPercentSignsButNotDoubledOnesModulo256) {
    std::string many;
    for (int i = 0; i < 257; ++i) {
        many += "%d";
    }
    const std::pair<std::string, int> counts[] = {{"", 0},      {"plain", 0}, {"%d%%%s", 2},
                                                  {"100%%", 0}, {"100%", 1},  {"%%%", 1},
                                                  {"%%%%", 0},  {many, 1}};
    for (const auto& [text, count] : counts) {
        EXPECT_EQ(COUNT_ARGS(text.c_str()), count) << text;
    }
}

TEST_F(CoProTest, CountArgsLooksNoFurtherThanTheText) {
    EXPECT_EQ(COUNT_ARGS("100%\0%d"), 1);
    EXPECT_EQ(COUNT_ARGS("100%%\0%d"), 0);
}

using CoProDeathTest = CoProTest;

TEST_F(CoProDeathTest, CountArgsAbortsBeforeEve3) {
    use(eve2);
    expectFailure([](Host*) { COUNT_ARGS("%"); }, "uint8_t COUNT_ARGS(const char*)", eve3Text);
}

// --- the controller's clock

TEST_F(CoProTest, ClockSamplesGoToAddresses0And4InTurn) {
    for (int i = 0; i < 3; ++i) {
        Set_GpuClock(&host);
        EXPECT_EQ(CmdBuffer_Index, 0U);
    }
    const Words all = board.commandWords();
    ASSERT_EQ(all.size(), 15U);
    for (std::size_t i = 0; i < all.size(); i += 5) {
        EXPECT_EQ(all[i], 0xFFFFFF42U);
        EXPECT_EQ(all[i + 1], 0xFFFFFF1DU);
        EXPECT_EQ(all[i + 3], 0x00302008U);
        EXPECT_EQ(all[i + 4], 4U);
    }
    // The first address depends on the samples that this process has taken before.
    EXPECT_EQ(all[2] + all[7], 4U);
    EXPECT_EQ(all[12], all[2]);
}

TEST_F(CoProTest, ClockSamplingWaitsUntilTheCoprocessorIsDone) {
    Set_GpuClock(&host);
    const auto last = board.transactions().back();
    EXPECT_EQ(last.kind, Transaction::Read);
    EXPECT_EQ(last.address, 0x3020FCU);
    EXPECT_EQ(board.transactions(Transaction::Read, 0x3020FC).size(), 2U)
        << "flushed, then drained";
}

TEST_F(CoProTest, TheFirstClockSampleGoesToAddress0) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process without samples before
    const auto sampleOnce = [this] {
        Set_GpuClock(&host);
        std::exit(static_cast<int>(board.commandWords().at(2)));
    };
    EXPECT_EXIT(sampleOnce(), testing::ExitedWithCode(0), "");
}

TEST_F(CoProTest, ClocksBetweenSamplesAreTheSameWhicheverIsTheNewer) {
    board.poke(0, 1000);
    board.poke(4, 801000);
    EXPECT_EQ(Get_GpuClock(&host), 800000U);
    board.poke(0, 801000);
    board.poke(4, 1000);
    EXPECT_EQ(Get_GpuClock(&host), 800000U);
    board.poke(0, 0xFFFFFFFF);
    board.poke(4, 0);
    EXPECT_EQ(Get_GpuClock(&host), 0xFFFFFFFFU);
}

TEST_F(CoProDeathTest, ClockFunctionsAbortOnEve1) {
    use(eve1);
    expectFailure(Set_GpuClock, "void Set_GpuClock(Gpu_Hal_Context_t*)", eve2Text);
    expectFailure([](Host* h) { Get_GpuClock(h); }, "uint32_t Get_GpuClock(Gpu_Hal_Context_t*)",
                  eve2Text);
}

} // namespace
