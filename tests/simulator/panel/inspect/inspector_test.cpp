#include "console.h"
#include "dlwords.h"
#include "inspector.h"
#include "stillhost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace panel {
namespace {

namespace cmd = controllertest::cmd;
namespace dl = controller::dl;
namespace primitive = controller::primitive;
using controllertest::pair;
using controllertest::words;
using controllertest::operator+;
using testing::ElementsAre;
using Words = std::vector<std::uint32_t>;

const Words rectangle = {dl::clear(true, true, true),
                         dl::colorRgb(0xFF0000),
                         dl::tag(5),
                         dl::begin(primitive::Rects),
                         dl::vertex2ii(10, 10, 0, 0),
                         dl::vertex2ii(50, 50, 0, 0),
                         dl::end()};

std::vector<std::string> textsOf(const WordReport& word) {
    std::vector<std::string> texts;
    for (const Cause& cause : word.causes) {
        texts.push_back(cause.text.toStdString());
    }
    return texts;
}

class InspectorTest : public testing::Test {
protected:
    void show(const Words& commands) {
        host.command(Words{cmd::dlStart} + commands + Words{dl::display(), cmd::swap});
        host.frames();
    }

    StillHost host;
    Inspector inspector{host.module};
};

TEST_F(InspectorTest, APixelHasItsColourItsTagAndWhatDrewIt) {
    show(rectangle);
    const PixelReport pixel = inspector.pixel(30, 20);
    EXPECT_TRUE(pixel.isOnPanel);
    EXPECT_EQ(pixel.colour, 0xFF0000U);
    EXPECT_EQ(pixel.tag, 5);
    ASSERT_EQ(pixel.steps.size(), 2U);
    const StepReport& top = *pixel.top();
    ASSERT_EQ(top.words.size(), 3U);
    EXPECT_EQ(top.words[0].text.toStdString(), "BEGIN RECTS");
    EXPECT_EQ(top.words[2].text.toStdString(), "VERTEX2II 50 50 0 0");
    EXPECT_EQ(top.words[2].index, 5U);
    EXPECT_TRUE(top.covers);
    EXPECT_FALSE(inspector.pixel(480, 0).isOnPanel);
}

TEST_F(InspectorTest, AWordOfACommandKnowsTheCommandAndItsTransaction) {
    show(rectangle + Words{cmd::text, pair(100, 100), pair(28, 0x600)} + words("Ok"));
    const std::vector<WordReport> list = inspector.list();
    const auto character = std::find_if(list.begin() + 7, list.end(), [](const WordReport& word) {
        return word.text.startsWith(QLatin1String("VERTEX"));
    });
    ASSERT_NE(character, list.end());
    ASSERT_THAT(textsOf(*character), ElementsAre("CMD_TEXT 100 100 28 OPT_CENTER \"Ok\""));
    EXPECT_TRUE(
        character->causes[0].transactions.contains(QStringLiteral("s, W RAM_CMD, 56 bytes")))
        << character->causes[0].transactions.toStdString();
    EXPECT_THAT(textsOf(list[4]), ElementsAre("VERTEX2II 10 10 0 0"));
    EXPECT_EQ(list.back().text, QStringLiteral("DISPLAY"));
}

TEST_F(InspectorTest, AppendedWordsAreFollowedThroughMemory) {
    host.command(Words{cmd::dlStart} + rectangle +
                 Words{cmd::memCpy, 100000, 0x300000, 28, cmd::dlStart, cmd::append, 100000, 28,
                       dl::display(), cmd::swap});
    host.frames();
    const std::vector<WordReport> list = inspector.list();
    ASSERT_EQ(list.size(), 8U);
    EXPECT_THAT(textsOf(list[3]), ElementsAre("CMD_APPEND 0x186A0 28",
                                              "CMD_MEMCPY 0x186A0 0x300000 28", "BEGIN RECTS"));
    EXPECT_THAT(textsOf(list[7]), ElementsAre("DISPLAY"));
}

TEST_F(InspectorTest, WhatTheHostHasWrittenItselfIsItsOwn) {
    host.write(1000, rectangle);
    host.command({cmd::dlStart, cmd::append, 1000, 28, dl::display(), cmd::swap});
    host.frames();
    EXPECT_THAT(textsOf(inspector.list()[3]),
                ElementsAre("CMD_APPEND 0x3E8 28", "written by the host"));

    host.write(0x300000, rectangle + Words{dl::display()});
    host.write(0x302054, {2}); // REG_DLSWAP
    host.frames();
    const WordReport word = inspector.list()[3];
    EXPECT_THAT(textsOf(word), ElementsAre("written by the host"));
    EXPECT_TRUE(word.causes[0].transactions.contains(QStringLiteral("W RAM_DL, 32 bytes")));
}

TEST_F(InspectorTest, WhatAnAnimationAddsIsTheCommandsThatBeganIt) {
    host.command(Words{cmd::dlStart} + rectangle + Words{cmd::spinner, pair(200, 100), pair(0, 0)});
    host.frames(3);
    const std::vector<WordReport> list = inspector.list();
    ASSERT_GT(list.size(), 8U);
    EXPECT_THAT(textsOf(list[3]), ElementsAre("BEGIN RECTS"));
    EXPECT_THAT(textsOf(list[8]), ElementsAre("CMD_SPINNER 200 100 0 0"));
}

TEST_F(InspectorTest, WhatWasBeforeHasNoCause) {
    show(rectangle);
    const Inspector late(host.module);
    EXPECT_TRUE(late.list()[3].causes.empty());
    host.module.powerDown(false);
    host.module.powerDown(true);
    EXPECT_TRUE(inspector.list()[0].causes.empty());
}

TEST_F(InspectorTest, OutlinesAPrimitive) {
    show(rectangle);
    const QRect outline = inspector.outline(inspector.pixel(30, 20).top()->indices());
    EXPECT_TRUE(outline.contains(QRect(10, 10, 41, 41))) << outline.width();
    EXPECT_LE(outline.width(), 44);
    EXPECT_TRUE(inspector.outline({1}).isEmpty());
}

TEST_F(InspectorTest, FindsWhatAStepComesFrom) {
    show(rectangle + Words{cmd::button, pair(100, 100), pair(60, 30), pair(27, 0x100)} +
         words("Go on"));
    const StepReport red = *inspector.pixel(30, 20).top();
    EXPECT_TRUE(comesFrom(red, QStringLiteral("BEGIN RECTS")));
    EXPECT_FALSE(comesFrom(red, QStringLiteral("CMD_BUTTON")));
    const StepReport button = *inspector.pixel(105, 105).top();
    EXPECT_TRUE(comesFrom(button, QStringLiteral("CMD_BUTTON")));
    EXPECT_TRUE(comesFrom(button, QStringLiteral("CMD_BUTTON * \"Go on\"")));
    EXPECT_FALSE(comesFrom(button, QStringLiteral("CMD_BUTTON * \"Stop\"")));
}

TEST_F(InspectorTest, NamesPlacesBothWays) {
    EXPECT_EQ(inspector.addressOf(QStringLiteral("RAM_G+100000")), 100000U);
    EXPECT_EQ(inspector.addressOf(QStringLiteral("RAM_DL")), 0x300000U);
    EXPECT_EQ(inspector.addressOf(QStringLiteral("REG_ID")), 0x302000U);
    EXPECT_EQ(inspector.addressOf(QStringLiteral("0x186A0")), 100000U);
    EXPECT_EQ(inspector.addressOf(QStringLiteral("RAM_X")), std::nullopt);
    EXPECT_EQ(inspector.addressOf(QStringLiteral("RAM_G+x")), std::nullopt);
    EXPECT_EQ(inspector.placeName(100000), QStringLiteral("RAM_G+100000"));
    EXPECT_EQ(inspector.placeName(0x302000), QStringLiteral("REG_ID"));
    host.write(16, {0x04030201});
    EXPECT_EQ(inspector.memory(16, 4), QByteArray("\x01\x02\x03\x04"));
}

// --- the ledger's bounds

TEST_F(InspectorTest, TheLedgerForgetsWhatHasLeftNothing) {
    Ledger ledger(controller::Generation::E3);
    host.module.addObserver(&ledger);
    host.command(Words{cmd::dlStart} + rectangle + Words{cmd::memCpy, 100000, 0x300000, 28});
    host.frames(1);
    for (int i = 0; i < 60; ++i) {
        host.command(Words(1000, cmd::bgColor));
        host.frames(1);
        EXPECT_LE(ledger.size(), 17000U);
    }
    host.command({cmd::dlStart, cmd::append, 100000, 28, dl::display(), cmd::swap});
    host.frames();
    EXPECT_THAT(
        textsOf(inspector.list()[3]),
        ElementsAre("CMD_APPEND 0x186A0 28", "CMD_MEMCPY 0x186A0 0x300000 28", "BEGIN RECTS"));
    host.module.removeObserver(&ledger);
}

TEST(OriginTest, KeepsTheMakerAndTheLastMoves) {
    Origin origin(1);
    for (std::uint32_t mover = 2; mover <= 6; ++mover) {
        origin = origin.movedBy(mover);
    }
    EXPECT_THAT(origin.deeds(), ElementsAre(6, 5, 4, 1));
}

// --- as text

class ConsoleTest : public InspectorTest {
protected:
    std::string ask(const char* line) { return console.answer(QLatin1String(line)).toStdString(); }

    Console console{inspector};
};

TEST_F(ConsoleTest, ExplainsAPixelTopmostFirst) {
    show(rectangle);
    EXPECT_THAT(ask("pixel 30 20"),
                testing::MatchesRegex("pixel 30 20: colour 0xFF0000, tag 5\n"
                                      "   3  BEGIN RECTS\n"
                                      "   4  VERTEX2II 10 10 0 0\n"
                                      "   5  VERTEX2II 50 50 0 0   0x000000 -> 0xFF0000, tag\n"
                                      "        by VERTEX2II 50 50 0 0\n"
                                      "          in transaction [0-9]+ at [0-9.]+ s, W RAM_CMD, 40 "
                                      "bytes\n"
                                      "   0  CLEAR 1 1 1   0x000000 -> 0x000000, tag\n"
                                      "        by CLEAR 1 1 1\n"
                                      "          in .*\n"));
    EXPECT_EQ(ask("pixel 480 20"), "pixel 480 20 is not on the panel\n");
    EXPECT_EQ(ask("pixel 480"), "pixel takes X Y\n");
}

TEST_F(ConsoleTest, ListsWordsByCommandAndSearches) {
    show(rectangle + Words{cmd::text, pair(100, 100), pair(28, 0x600)} + words("Ok"));
    EXPECT_THAT(ask("list"), testing::HasSubstr("\nby CMD_TEXT 100 100 28 OPT_CENTER \"Ok\"\n"));
    const std::string found = ask("list cmd_text");
    EXPECT_EQ(found.find("RECTS"), std::string::npos);
    EXPECT_THAT(found, testing::HasSubstr("BEGIN BITMAPS"));
    EXPECT_EQ(ask("list nothing like it"), "no word of or by \"nothing like it\"\n");
}

TEST_F(ConsoleTest, ShowsRegistersAndMemory) {
    EXPECT_EQ(ask("registers hsize"), "REG_HSIZE              0x000001E0 480\n");
    host.write(100000, {0x6B4F});
    EXPECT_EQ(ask("memory RAM_G+100000 4"),
              "RAM_G+100000\n0x0186a0  4f 6b 00 00                                      Ok..\n");
    EXPECT_EQ(ask("memory nowhere"), "memory takes PLACE [N]\n");
}

TEST_F(ConsoleTest, StepsAndGoesOn) {
    EXPECT_EQ(ask("pause"), "paused\n");
    host.command({cmd::dlStart, cmd::fgColor, 0x123456, cmd::swap, cmd::dlStart});
    EXPECT_EQ(ask("command"), "CMD_DLSTART\n");
    EXPECT_THAT(ask("command 5"),
                testing::MatchesRegex("CMD_FGCOLOR 0x123456\nCMD_SWAP\nnone: .*\n"));
    const std::uint32_t before = host.module.counts().frames;
    EXPECT_EQ(ask("frame 3"), "paused after frame " + std::to_string(before + 3) + ", list 1\n");
    EXPECT_EQ(ask("go"), "running\n");
    EXPECT_FALSE(host.module.isPaused());
}

TEST_F(ConsoleTest, ChangesTheSpeed) {
    EXPECT_EQ(ask("speed 0.5"), "0.5 times as fast as the clock\n");
    EXPECT_EQ(host.module.speed(), 0.5);
    EXPECT_EQ(ask("speed 0"), "a factor is from 0.001 to 20\n");
    EXPECT_EQ(ask("speed"), "0.5 times as fast as the clock\n");
}

TEST_F(ConsoleTest, SaysWhatThereIsToAsk) {
    EXPECT_EQ(ask(""), "");
    EXPECT_EQ(ask("# only said"), "");
    EXPECT_THAT(ask("help"), testing::HasSubstr("pixel X Y"));
    EXPECT_THAT(ask("what"), testing::HasSubstr("there is no \"what\""));
}

} // namespace
} // namespace panel
