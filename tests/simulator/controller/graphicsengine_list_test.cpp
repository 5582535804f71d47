// Walking a display list: its flow, the context stack, the generations' words, and lists that are
// wrong.

#include "letterpicture.h"
#include "scanner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace controller;
using namespace controller::listwords;
using letterpicture::rows;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::uint32_t returnFromCall = word(opcode::Return);
constexpr std::uint32_t call(std::uint32_t index) {
    return word(opcode::Call, index);
}
constexpr std::uint32_t jump(std::uint32_t index) {
    return word(opcode::Jump, index);
}

// The words that set one pixel of the first row in the current colour.
std::vector<std::uint32_t> dot(int x) {
    return {begin(primitive::EdgeStripA), vertex2f(x * 16, 16), vertex2f(x * 16 + 16, 16), end()};
}

std::string drawn(Scanner& scanner, const std::vector<std::uint32_t>& list) {
    return letterpicture::brightness(scanner.scan(8, 1, list).picture);
}

std::vector<std::string> complaintsOf(Generation generation,
                                      const std::vector<std::uint32_t>& list) {
    Scanner scanner(generation);
    return scanner.scan(8, 8, list).complaints;
}

} // namespace

// --- flow

TEST(DisplayList, EndsAtDisplay) {
    Scanner scanner;
    EXPECT_EQ(drawn(scanner, dot(1) + std::vector{display()} + dot(3)), rows({".#......"}));
}

TEST(DisplayList, JumpGoesOnElsewhere) {
    Scanner scanner;
    EXPECT_EQ(drawn(scanner, std::vector{jump(5)} + dot(1) + dot(3)), rows({"...#...."}));
}

TEST(DisplayList, CallComesBack) {
    Scanner scanner;
    // 0: call 6, 1..4: dot, 5: display(), 6..9: dot, 10: return
    EXPECT_EQ(drawn(scanner, std::vector{call(6)} + dot(1) + std::vector{display()} + dot(3) +
                                 std::vector{returnFromCall}),
              rows({".#.#...."}));
}

TEST(DisplayList, CallsNestFourDeep) {
    std::vector<std::uint32_t> list(64, display());
    list[0] = call(10);
    list[10] = call(20);
    list[11] = returnFromCall;
    list[20] = call(30);
    list[21] = returnFromCall;
    list[30] = call(40);
    list[31] = returnFromCall;
    list[40] = returnFromCall;
    EXPECT_THAT(complaintsOf(Generation::E3, list), IsEmpty());
    list[40] = call(50);
    EXPECT_THAT(complaintsOf(Generation::E3, list), ElementsAre(HasSubstr("CALL")));
}

TEST(DisplayList, MacroExecutesTheWordInItsRegister) {
    Scanner scanner;
    scanner.macros() = {colorRgb(0x00FF00), colorRgb(0)};
    EXPECT_EQ(drawn(scanner, std::vector{macro(1)} + dot(0) + std::vector{macro(0)} + dot(1)),
              rows({".#......"}));
}

TEST(DisplayList, AMacroThatHoldsMacroIsComplainedAbout) {
    Scanner scanner;
    scanner.macros() = {macro(0), 0};
    EXPECT_THAT(scanner.scan(1, 1, {macro(0)}).complaints, ElementsAre(HasSubstr("MACRO")));
}

// --- contexts

TEST(Contexts, RestoreBringsBackWhatWasSaved) {
    Scanner scanner;
    EXPECT_EQ(drawn(scanner, std::vector{saveContext(), colorRgb(0), restoreContext()} + dot(2)),
              rows({"..#....."}));
}

TEST(Contexts, AreFourDeep) {
    std::vector<std::uint32_t> list;
    for (std::uint32_t i = 0; i < 4; ++i) {
        list = list + std::vector{colorRgb(0x003300 * i), saveContext()};
    }
    list.push_back(colorRgb(0x00FF00));
    list = list + dot(0);
    for (int i = 1; i <= 4; ++i) {
        list.push_back(restoreContext());
        list = list + dot(i);
    }
    Scanner scanner;
    EXPECT_EQ(drawn(scanner, list), rows({"#642...."}));
}

TEST(Contexts, AFifthSaveAndAFifthRestoreAreComplainedAbout) {
    EXPECT_THAT(complaintsOf(Generation::E3, std::vector<std::uint32_t>(5, saveContext())),
                ElementsAre(HasSubstr("SAVE_CONTEXT")));
    EXPECT_THAT(complaintsOf(Generation::E3, {restoreContext()}),
                ElementsAre(HasSubstr("RESTORE_CONTEXT")));
}

TEST(Contexts, DoNotHoldWhatBelongsToABitmapHandle) {
    Scanner scanner;
    scanner.store(0x40, {255});
    EXPECT_EQ(drawn(scanner, {saveContext(), bitmapSource(0x40), bitmapLayout(format::L8, 1, 1),
                              bitmapSize(nearest, 1, 1), restoreContext(),
                              begin(primitive::Bitmaps), vertex2ii(4, 0)}),
              rows({"....#..."}));
}

TEST(Contexts, EveryFrameStartsAnew) {
    Scanner scanner;
    drawn(scanner, {colorRgb(0), colorA(0), scissorSize(0, 0), vertexFormat(0),
                    word(opcode::VertexTranslateX, 160), saveContext()});
    EXPECT_EQ(drawn(scanner, dot(5)), rows({".....#.."}));
}

// --- vertices

TEST(Vertices, VertexFormatSaysHowManyFractionBitsThereAre) {
    for (int fraction = 0; fraction <= 4; ++fraction) {
        Scanner scanner;
        const int one = 1 << fraction;
        EXPECT_EQ(drawn(scanner, {vertexFormat(static_cast<std::uint32_t>(fraction)),
                                  begin(primitive::EdgeStripA), vertex2f(2 * one, one),
                                  vertex2f(5 * one, one)}),
                  rows({"..###..."}));
    }
}

TEST(Vertices, TranslationMovesBothKindsOfVertices) {
    Scanner scanner;
    const std::uint32_t leftByTwo = word(opcode::VertexTranslateX, 0x1FFFF & (0x20000 - 32));
    EXPECT_EQ(drawn(scanner, std::vector{leftByTwo} + dot(3)), rows({".#......"}));
    EXPECT_EQ(
        drawn(scanner, {leftByTwo, begin(primitive::EdgeStripA), vertex2ii(5, 1), vertex2ii(6, 1)}),
        rows({"...#...."}));
    Scanner down;
    EXPECT_EQ(letterpicture::brightness(
                  down.scan(3, 3,
                            {word(opcode::VertexTranslateY, 32), begin(primitive::EdgeStripB),
                             vertex2ii(0, 0), vertex2ii(2, 0)})
                      .picture),
              rows({"...", "...", "##."}));
}

TEST(Vertices, AHandleOfItsOwnDoesNotChangeTheCurrentOne) {
    Scanner scanner;
    scanner.store(0, {255});
    EXPECT_EQ(drawn(scanner, {bitmapHandle(3), bitmapSource(0), bitmapLayout(format::L8, 1, 1),
                              bitmapSize(nearest, 1, 1), begin(primitive::Bitmaps),
                              vertex2ii(1, 0, 17, ' '), vertex2f(5 * 16, 0)}),
              rows({".....#.."}));
}

TEST(Vertices, OutsideBeginAndEndAreComplainedAbout) {
    EXPECT_THAT(complaintsOf(Generation::E3, {vertex2ii(1, 1)}), ElementsAre(HasSubstr("vertex")));
    EXPECT_THAT(complaintsOf(Generation::E3, dot(1) + std::vector{vertex2ii(1, 1)}),
                ElementsAre(HasSubstr("vertex")));
}

// --- words that are wrong

TEST(BadWords, UnknownOnesAreComplainedAboutOnceAFrame) {
    Scanner scanner;
    const std::vector<std::uint32_t> list{0x3F000001, 0x3F000002, 0x35000000};
    EXPECT_THAT(scanner.scan(1, 1, list).complaints,
                ElementsAre(HasSubstr("0x3F000001"), HasSubstr("0x35000000")));
    EXPECT_THAT(scanner.scan(1, 1, list).complaints, SizeIs(2));
    EXPECT_THAT(scanner.scan(1, 1, {}).complaints, IsEmpty());
}

TEST(BadWords, ThoseOfALaterGenerationAreUnknown) {
    for (std::uint32_t code = opcode::VertexFormat; code <= opcode::IntFrr; ++code) {
        const std::vector<std::uint32_t> list{word(code, 0)};
        EXPECT_THAT(complaintsOf(Generation::E1, list), SizeIs(1)) << code;
        EXPECT_THAT(complaintsOf(Generation::E2, list),
                    SizeIs(code >= opcode::BitmapExtFormat ? 1 : 0))
            << code;
        EXPECT_THAT(complaintsOf(Generation::E3, list), IsEmpty()) << code;
    }
}

TEST(BadWords, FieldsWithNoMeaningAreComplainedAbout) {
    EXPECT_THAT(complaintsOf(Generation::E3, {begin(12)}), ElementsAre(HasSubstr("primitive 12")));
    EXPECT_THAT(complaintsOf(Generation::E3, {vertexFormat(5)}),
                ElementsAre(HasSubstr("VERTEX_FORMAT")));
    EXPECT_THAT(complaintsOf(Generation::E3, {word(opcode::BlendFunc, 7 << 3)}),
                ElementsAre(HasSubstr("blend")));
    EXPECT_THAT(complaintsOf(Generation::E3, {word(opcode::BitmapSwizzle, 7)}),
                ElementsAre(HasSubstr("swizzle")));
    EXPECT_THAT(complaintsOf(Generation::E3, {word(opcode::BitmapSource, 1 << 23)}),
                ElementsAre(HasSubstr("flash")));
}

TEST(BadLists, WithoutDisplayTheyEndAtTheLastWord) {
    Scanner scanner;
    const std::vector<std::uint32_t> list(displayListWords, colorRgb(0));
    EXPECT_THAT(scanner.scan(1, 1, list).complaints, ElementsAre(HasSubstr("DISPLAY")));
}

TEST(BadLists, JumpsOutOfTheListEndIt) {
    EXPECT_THAT(complaintsOf(Generation::E3, {jump(2048)}), ElementsAre(HasSubstr("JUMP")));
    EXPECT_THAT(complaintsOf(Generation::E3, {call(0xFFFF)}), ElementsAre(HasSubstr("CALL")));
}

TEST(BadLists, AnEndlessLoopIsGivenUp) {
    EXPECT_THAT(complaintsOf(Generation::E3, {jump(0)}), ElementsAre(HasSubstr("circles")));
}

TEST(BadLists, ALoopThatDrawsIsGivenUpToo) {
    Scanner scanner;
    EXPECT_THAT(scanner
                    .scan(480, 272,
                          {begin(primitive::Points), pointSize(8191), vertex2ii(240, 136), jump(2)})
                    .complaints,
                ElementsAre(HasSubstr("more to draw")));
}

TEST(BadLists, ReturnWithoutCallIsComplainedAbout) {
    EXPECT_THAT(complaintsOf(Generation::E3, {returnFromCall}), ElementsAre(HasSubstr("RETURN")));
}

TEST(BadLists, RandomWordsNeitherCrashNorHang) {
    for (const Generation generation : {Generation::E1, Generation::E2, Generation::E3}) {
        Scanner scanner(generation);
        std::uint32_t random = 12345;
        const auto next = [&] {
            random ^= random << 13;
            random ^= random >> 17;
            random ^= random << 5;
            return random;
        };
        for (int round = 0; round < 12; ++round) {
            std::vector<std::uint32_t> list(displayListWords);
            for (std::uint32_t& word : list) {
                word = next();
                if (next() % 2 == 0) {
                    word &= 0x3FFFFFFF; // more state than vertices
                }
                if (word >> 24 == opcode::Display) {
                    word = begin(next() % 10);
                }
            }
            const Frame& frame = scanner.scan(120, 68, list);
            EXPECT_EQ(frame.picture.pixels.size(), 120U * 68U);
        }
    }
}

TEST(BadLists, AnEmptyPanelDrawsNothing) {
    Scanner scanner;
    EXPECT_THAT(scanner.scan(0, 0, {clearAll, begin(primitive::Points), vertex2ii(0, 0)}).tags,
                IsEmpty());
}
