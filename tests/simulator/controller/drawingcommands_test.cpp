#include "fontrom.h"
#include "host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace controllertest;
using testing::ElementsAre;
using testing::IsEmpty;
using V = std::vector<std::uint32_t>;

constexpr std::uint32_t saveContext = 0x22000000;
constexpr std::uint32_t restoreContext = 0x23000000;
constexpr std::uint32_t beginBitmaps = 0x1F000001;
constexpr std::uint32_t end = 0x21000000;

std::uint32_t vertex2ii(int x, int y, int handle, int cell) {
    return 0x80000000U | static_cast<std::uint32_t>(x) << 21U |
           static_cast<std::uint32_t>(y) << 12U | static_cast<std::uint32_t>(handle) << 7U |
           static_cast<std::uint32_t>(cell);
}

int widthOf(Generation generation, int font, const std::string& text) {
    int width = 0;
    for (const char c : text) {
        width += controller::romFont(generation, font).widths[static_cast<unsigned char>(c)];
    }
    return width;
}

// Words that a command adds to an empty list.
class DrawingCommands : public testing::Test {
protected:
    explicit DrawingCommands(Generation generation = Generation::E3) : host(generation) {
        host.bootWithPanel();
    }
    V listOf(const V& commands) {
        host.send(V{cmd::dlStart} + commands);
        host.waitFrames(1);
        return host.listWritten();
    }
    V textAt(int x, int y, int font, int options, const std::string& text) {
        return V{cmd::text, pair(x, y), pair(font, options)} + words(text);
    }
    const controller::Picture& show(const V& commands) {
        host.send(V{cmd::dlStart} + commands + V{0, cmd::swap});
        host.waitFrames(2);
        return host.chip.frame().picture;
    }

    Host host;
};

class DrawingCommandsOfE1 : public DrawingCommands {
protected:
    DrawingCommandsOfE1() : DrawingCommands(Generation::E1) {}
};

TEST_F(DrawingCommandsOfE1, TextIsOneVertexPerCharacterInABracket) {
    const int h = widthOf(Generation::E1, 27, "H");
    EXPECT_THAT(listOf(textAt(10, 20, 27, 0, "Hi")),
                ElementsAre(saveContext, beginBitmaps, vertex2ii(10, 20, 27, 'H'),
                            vertex2ii(10 + h, 20, 27, 'i'), end, restoreContext));
}

TEST_F(DrawingCommands, TextIsPlacedAsItsOptionsSay) {
    const int width = widthOf(Generation::E3, 28, "abc");
    const int height = static_cast<int>(controller::romFont(Generation::E3, 28).height);
    const auto firstVertex = [&](int options) {
        for (const std::uint32_t word : listOf(textAt(200, 100, 28, options, "abc"))) {
            if (word >> 30U == 2) {
                return word;
            }
        }
        return 0U;
    };
    EXPECT_EQ(firstVertex(0), vertex2ii(200, 100, 28, 'a'));
    EXPECT_EQ(firstVertex(0x200), vertex2ii(200 - width / 2, 100, 28, 'a'));
    EXPECT_EQ(firstVertex(0x400), vertex2ii(200, 100 - height / 2, 28, 'a'));
    EXPECT_EQ(firstVertex(0x600), vertex2ii(200 - width / 2, 100 - height / 2, 28, 'a'));
    EXPECT_EQ(firstVertex(0x800), vertex2ii(200 - width, 100, 28, 'a'));
}

TEST_F(DrawingCommands, TextBeyondTheShortVertexFormUsesTheLongOne) {
    const V list = listOf(textAt(-3, 5, 27, 0, "A"));
    // VERTEX_FORMAT 4, then handle, cell and a vertex at (-3, 5) in 1/16 pixel.
    EXPECT_THAT(list,
                ElementsAre(saveContext, 0x27000004, beginBitmaps, 0x0500001B, 0x06000041,
                            0x40000000U | (0x7FFFU & static_cast<std::uint32_t>(-48)) << 15U | 80U,
                            end, restoreContext));
}

TEST_F(DrawingCommands, ALineBreakStartsANewLine) {
    host.send(V{cmd::dlStart, 0x26000007} + textAt(100, 50, 27, 0, "one\ntwo") + V{0, cmd::swap});
    host.waitFrames(2);
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("one", "two"));
}

TEST_F(DrawingCommands, FormattedTextTakesItsArguments) {
    show(V{0x26000007, cmd::text, pair(10, 10), pair(27, 0x1000)} + words("%d of %u%%: %s") +
         V{static_cast<std::uint32_t>(-5), 7, 5000} +
         V{cmd::memWrite, 6000, 4, 0}); // something behind it
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("-5 of 7%: "));
}

TEST_F(DrawingCommands, WithoutTheOptionNothingIsFormatted) {
    show(V{0x26000007} + textAt(10, 10, 27, 0, "100%% of %d"));
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("100%% of %d"));
}

TEST_F(DrawingCommands, NumbersAreTexts) {
    show({0x26000007, cmd::number, pair(10, 10), pair(27, 0), 1234, cmd::number, pair(10, 40),
          pair(27, 0x106), static_cast<std::uint32_t>(-42), cmd::number, pair(10, 70), pair(27, 0),
          0xFFFFFFFF, cmd::setBase, 16, cmd::number, pair(10, 100), pair(27, 4), 0xBEE});
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("1234", "-000042", "4294967295", "0BEE"));
}

TEST_F(DrawingCommands, AButtonFillsItsPlaceInTheForegroundColour) {
    const controller::Picture& picture = show(V{0x26000007, cmd::fgColor, 0x00A1DD, cmd::button,
                                                pair(10, 20), pair(40, 30), pair(27, 0x100)} +
                                              words(""));
    EXPECT_EQ(picture.at(30, 35), 0xFF00A1DD);
    EXPECT_EQ(picture.at(30, 20), 0xFF00A1DD) << "upper edge";
    EXPECT_EQ(picture.at(30, 49), 0xFF00A1DD) << "lower edge";
    EXPECT_EQ(picture.at(10, 35), 0xFF00A1DD);
    EXPECT_EQ(picture.at(49, 35), 0xFF00A1DD);
    EXPECT_EQ(picture.at(30, 19), 0xFF000000);
    EXPECT_EQ(picture.at(30, 50), 0xFF000000);
    EXPECT_EQ(picture.at(9, 35), 0xFF000000);
    EXPECT_EQ(picture.at(50, 35), 0xFF000000);
    EXPECT_EQ(picture.at(10, 20), 0xFF000000) << "round corner";
    EXPECT_EQ(picture.at(49, 49), 0xFF000000) << "round corner";
}

TEST_F(DrawingCommands, ARaisedButtonIsLitAboveAndDarkBelow) {
    const controller::Picture& picture = show(V{0x26000007, cmd::fgColor, 0x404040, cmd::button,
                                                pair(10, 20), pair(60, 40), pair(27, 0)} +
                                              words(""));
    EXPECT_GT(picture.at(40, 20) & 0xFF, 0x60U);
    EXPECT_EQ(picture.at(40, 40), 0xFF404040);
    EXPECT_LT(picture.at(40, 59) & 0xFF, 0x30U);
}

TEST_F(DrawingCommands, AButtonsLabelIsCentredInTheCurrentColour) {
    show(V{0x26000007, 0x04FF0000, cmd::button, pair(100, 50), pair(60, 30), pair(27, 0x100)} +
         words("Set"));
    ASSERT_THAT(host.chip.textOnPanel(), ElementsAre("Set"));
    const controller::DrawnCharacter& first = host.chip.frame().characters.front();
    EXPECT_EQ(first.x, 130 - widthOf(Generation::E3, 27, "Set") / 2);
    EXPECT_EQ(first.y, 65 - static_cast<int>(controller::romFont(Generation::E3, 27).height) / 2);
    bool red = false;
    for (const std::uint32_t pixel : host.chip.frame().picture.pixels) {
        red = red || pixel == 0xFFFF0000;
    }
    EXPECT_TRUE(red);
}

TEST_F(DrawingCommands, KeysLieSideBySideWithTheirCharactersAsTags) {
    show(V{0x26000007, 0x14000000, cmd::fgColor, 0x00A1DD, cmd::bgColor, 0x0087B8, cmd::keys,
           pair(10, 122), pair(460, 40), pair(29, 0x100 | '3')} +
         words("12345"));
    const controller::Frame& frame = host.chip.frame();
    const auto tagAt = [&](int x, int y) {
        return frame.tags[static_cast<std::size_t>(y) * 480 + static_cast<std::size_t>(x)];
    };
    EXPECT_EQ(tagAt(50, 142), '1');
    EXPECT_EQ(tagAt(240, 142), '3');
    EXPECT_EQ(tagAt(460, 142), '5');
    EXPECT_EQ(frame.picture.at(50, 126), 0xFF00A1DD);
    EXPECT_EQ(frame.picture.at(240, 126), 0xFF0087B8) << "the pressed one";
    // 463 pixels over five keys: 92, 93, 92, 93, 93 wide with their gap of 3.
    EXPECT_EQ(frame.picture.at(98, 142), 0xFF00A1DD);
    EXPECT_EQ(frame.picture.at(99, 142), 0xFF000000);
    EXPECT_EQ(frame.picture.at(101, 142), 0xFF000000);
    EXPECT_EQ(frame.picture.at(102, 142), 0xFF00A1DD);
    EXPECT_EQ(frame.picture.at(469, 142), 0xFF00A1DD);
    EXPECT_EQ(frame.picture.at(470, 142), 0xFF000000);
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("1", "2", "3", "4", "5"));
}

TEST_F(DrawingCommands, WidgetsLeaveTheCallersStateAlone) {
    // Everything drawn afterwards is still a red, tagged point of 10 pixels.
    const V widgets = V{cmd::button, pair(0, 0), pair(40, 30), pair(27, 0)} + words("x") +
                      V{cmd::keys, pair(50, 0), pair(40, 30), pair(27, 0)} + words("ab") +
                      V{cmd::gradient,
                        pair(0, 0),
                        0,
                        pair(100, 0),
                        0xFFFFFF,
                        cmd::progress,
                        pair(100, 10),
                        pair(50, 10),
                        pair(0, 5),
                        10,
                        cmd::slider,
                        pair(100, 30),
                        pair(50, 10),
                        pair(0, 5),
                        10,
                        cmd::scrollbar,
                        pair(100, 50),
                        pair(50, 10),
                        pair(0, 1),
                        pair(2, 10),
                        cmd::gauge,
                        pair(200, 40),
                        pair(30, 0),
                        pair(5, 4),
                        pair(1, 2),
                        cmd::clock,
                        pair(300, 40),
                        pair(30, 0),
                        pair(1, 2),
                        pair(3, 4),
                        cmd::dial,
                        pair(400, 40),
                        pair(20, 0),
                        100,
                        cmd::toggle,
                        pair(20, 60),
                        pair(40, 27),
                        pair(0, 0)} +
                      words("on");
    show(V{0x26000007, 0x04FF0000, 0x03000021, 0x0D0000A0, 0x1F000002} + widgets +
         V{0x1F000002, vertex2ii(240, 200, 0, 0)});
    const controller::Frame& frame = host.chip.frame();
    EXPECT_EQ(frame.picture.at(240, 200), 0xFFFF0000);
    EXPECT_EQ(frame.picture.at(240, 208), 0xFFFF0000);
    EXPECT_NE(frame.picture.at(240, 212), 0xFFFF0000);
    EXPECT_EQ(frame.tags[200 * 480 + 240], 0x21);
    EXPECT_THAT(host.seen.complaints, IsEmpty());
}

TEST_F(DrawingCommands, ProgressFillsTheShareOfItsRange) {
    const controller::Picture& picture =
        show({0x26000007, cmd::fgColor, 0x00FF00, cmd::bgColor, 0x0000FF, cmd::progress,
              pair(100, 100), pair(200, 16), pair(0x100, 25), 100});
    EXPECT_EQ(picture.at(130, 108), 0xFF00FF00);
    EXPECT_EQ(picture.at(200, 108), 0xFF0000FF);
}

TEST_F(DrawingCommands, SetBitmapDescribesTheBitmapForTheCurrentHandle) {
    // ARGB4, 470 x 85 at 0: 940 bytes a line.
    EXPECT_THAT(listOf({cmd::setBitmap, 0, pair(6, 470), 85}),
                ElementsAre(0x01000000, 0x07000000U | 6U << 19U | 940U << 9U | 85U, 0x28000000,
                            0x08000000U | 470U << 9U | 85U, 0x29000000));
    // RGB565, 800 x 600 at 100000: 1600 bytes a line = 1024 + 576; 800 = 512 + 288, 600 = 512 + 88.
    EXPECT_THAT(listOf({cmd::setBitmap, 100000, pair(7, 800), 600}),
                ElementsAre(0x010186A0, 0x07000000U | 7U << 19U | 576U << 9U | 88U, 0x28000005,
                            0x08000000U | 288U << 9U | 88U, 0x29000005));
}

TEST_F(DrawingCommands, SetBitmapKnowsTheBytesOfALineInEachFormat) {
    struct Line {
        std::uint32_t format;
        std::uint32_t bytes; // of nine pixels
    };
    for (const Line& line :
         {Line{0, 18}, Line{1, 2}, Line{2, 5}, Line{3, 9}, Line{4, 9}, Line{5, 9}, Line{6, 18},
          Line{7, 18}, Line{14, 9}, Line{15, 9}, Line{16, 9}, Line{17, 3}}) {
        EXPECT_THAT(listOf({cmd::setBitmap, 64, pair(static_cast<int>(line.format), 9), 4}),
                    ElementsAre(0x01000040,
                                0x07000000U | line.format << 19U | line.bytes << 9U | 4U,
                                0x28000000, 0x08000000U | 9U << 9U | 4U, 0x29000000))
            << line.format;
    }
    EXPECT_THAT(host.seen.complaints, IsEmpty());
    EXPECT_THAT(listOf({cmd::setBitmap, 64, pair(9, 9), 4}), IsEmpty());
    EXPECT_TRUE(host.seen.complainedAbout("SETBITMAP: format 9 is not modelled"));
}

TEST_F(DrawingCommands, ColoursOutliveTheListUntilAColdStart) {
    show({cmd::fgColor, 0x123456});
    const V button =
        V{0x26000007, cmd::button, pair(0, 0), pair(50, 50), pair(27, 0x100)} + words("");
    EXPECT_EQ(show(button).at(25, 25), 0xFF123456);
    EXPECT_EQ(show(V{cmd::coldStart} + button).at(25, 25), 0xFF003870);
}

TEST_F(DrawingCommands, WhatTheCoprocessorKeepsOutlivesTheListUntilAColdStart) {
    struct Change {
        const char* what;
        V commands;
    };
    // Raised, and pressed: all colours; the matrix; a font
    const V widgets = V{cmd::button, pair(0, 0), pair(50, 50), pair(27, 0)} + words("a") +
                      V{cmd::keys, pair(60, 0), pair(50, 50), pair(27, 'b')} + words("ab") +
                      V{cmd::setMatrix} + textAt(0, 100, 27, 0, "abc");
    const V initial = listOf(widgets);
    for (const Change& change :
         {Change{"FGCOLOR", {cmd::fgColor, 0x123456}}, Change{"BGCOLOR", {cmd::bgColor, 0x123456}},
          Change{"GRADCOLOR", {cmd::gradColor, 0x123456}},
          Change{"TRANSLATE", {cmd::translate, 0x10000, 0x10000}},
          Change{"ROMFONT", {cmd::romFont, 27, 31}}}) {
        listOf(change.commands);
        EXPECT_NE(listOf(widgets), initial) << change.what;
        listOf({cmd::coldStart});
        EXPECT_EQ(listOf(widgets), initial) << change.what;
    }
}

TEST_F(DrawingCommands, LargeRomFontsGoThroughTheScratchHandle) {
    show(V{0x26000007} + textAt(10, 10, 34, 0, "0"));
    bool lit = false;
    for (int y = 10; y < 118; ++y) {
        lit = lit || host.chip.frame().picture.at(40, y) != 0xFF000000;
    }
    EXPECT_TRUE(lit);
    EXPECT_THAT(host.seen.complaints, IsEmpty());
}

TEST_F(DrawingCommands, ARomFontCanStandAtAnotherHandle) {
    show(V{0x26000007, cmd::romFont, 1, 31} + textAt(10, 10, 1, 0, "1"));
    EXPECT_THAT(host.seen.complaints, IsEmpty());
    host.send({cmd::dlStart, cmd::romFont, 1, 35});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
}

TEST_F(DrawingCommands, AFontInMemoryIsUsedByItsMetrics) {
    // 8 x 8 L1 glyphs, every width 8, characters from 0 at address 200.
    host.write(0, std::vector<std::uint8_t>(128, 8));
    const std::uint32_t fields[] = {1, 1, 8, 8, 200};
    for (std::uint32_t i = 0; i < 5; ++i) {
        host.write32(128 + 4 * i, fields[i]);
    }
    host.write(200 + 8 * 'A', std::vector<std::uint8_t>(8, 0xFF));
    const controller::Picture& picture =
        show(V{0x26000007, 0x05000003, 0x010000C8, 0x07000000U | 1U << 19U | 1U << 9U | 8U,
               0x08000000U | 8U << 9U | 8U, cmd::setFont, 3, 0} +
             textAt(100, 100, 3, 0, "AA"));
    EXPECT_EQ(picture.at(100, 100), 0xFFFFFFFF);
    EXPECT_EQ(picture.at(115, 107), 0xFFFFFFFF);
    EXPECT_EQ(picture.at(116, 107), 0xFF000000);
}

TEST_F(DrawingCommands, AHandleOutOfRangeIsAFault) {
    for (const V& command : {V{cmd::setFont, 32, 0}, V{cmd::setFont2, 32, 0, 0},
                             V{cmd::romFont, 32, 16}, V{cmd::setScratch, 32}}) {
        Host other(Generation::E3);
        other.boot();
        other.send({cmd::dlStart, command[0], 31, 20, 0});
        EXPECT_NE(other.read16(other.at.cmdRead()), 0xFFF) << std::hex << command[0];
        other.send(command);
        EXPECT_EQ(other.read16(other.at.cmdRead()), 0xFFF) << std::hex << command[0];
        EXPECT_TRUE(other.seen.complainedAbout("handle 32 out of range"));
    }
}

TEST_F(DrawingCommands, ASlidersKnobStandsAtItsValue) {
    constexpr int flat = 256;
    const V colors{0x26000007, cmd::fgColor, 0x00FF00, cmd::bgColor, 0x0000FF};
    constexpr std::uint32_t passed = 0xFF00FF00;
    constexpr std::uint32_t knob = 0xFF3FFF3F; // a quarter of the way to white
    constexpr std::uint32_t groove = 0xFF0000FF;
    // A quarter of 200 pixels; the knob reaches 20 pixels to either side.
    const controller::Picture upright =
        show(colors + V{cmd::slider, pair(50, 20), pair(20, 200), pair(flat, 1), 4});
    EXPECT_EQ(upright.at(60, 48), passed);
    EXPECT_EQ(upright.at(60, 52), knob);
    EXPECT_EQ(upright.at(60, 70), knob);
    EXPECT_EQ(upright.at(60, 88), knob);
    EXPECT_EQ(upright.at(60, 93), groove);
    EXPECT_EQ(upright.at(42, 70), knob) << "in the middle of the bar";
    EXPECT_EQ(upright.at(77, 70), knob);

    const controller::Picture lying =
        show(colors + V{cmd::slider, pair(50, 20), pair(200, 20), pair(flat, 1), 4});
    EXPECT_EQ(lying.at(78, 30), passed);
    EXPECT_EQ(lying.at(82, 30), knob);
    EXPECT_EQ(lying.at(100, 30), knob);
    EXPECT_EQ(lying.at(118, 30), knob);
    EXPECT_EQ(lying.at(123, 30), groove);
    EXPECT_EQ(lying.at(100, 12), knob);
    EXPECT_EQ(lying.at(100, 47), knob);
}

TEST_F(DrawingCommands, TheGradientColourLightsTheUpperEdges) {
    const V button{cmd::button, pair(100, 100), pair(80, 40), pair(27, 0)};
    // Half of it and half of the face's own colour.
    const V black = V{0x26000007, cmd::fgColor, 0x000000};
    EXPECT_EQ(show(black + button + words("")).at(140, 100), 0xFF7F7F7F) << "white at first";
    EXPECT_EQ(show(black + V{cmd::gradColor, 0xFF8040} + button + words("")).at(140, 100),
              0xFF7F4020);
    EXPECT_EQ(host.chip.frame().picture.at(140, 120), 0xFF000000) << "the face itself";
}

// --- FILLWIDTH

constexpr int fill = 0x2000;

TEST_F(DrawingCommands, FillBreaksTextBetweenWordsAndAtLineFeeds) {
    const int width = widthOf(Generation::E3, 27, "one two");
    show(V{0x26000007, cmd::fillWidth, static_cast<std::uint32_t>(width)} +
         textAt(10, 10, 27, fill, "one two three four\nfive"));
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("one two", "three", "four", "five"));
    EXPECT_TRUE(host.seen.complaints.empty());
    show(V{0x26000007, cmd::fillWidth, static_cast<std::uint32_t>(width - 1)} +
         textAt(10, 10, 27, fill, "one two"));
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("one", "two"));
}

TEST_F(DrawingCommands, WithoutFillTheWidthDoesNotCount) {
    show(V{0x26000007, cmd::fillWidth, 20} + textAt(10, 10, 27, 0, "one two"));
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("one two"));
}

TEST_F(DrawingCommands, FillLeavesTextAloneBeforeAWidthIsGiven) {
    show(V{0x26000007} + textAt(10, 10, 27, fill, "one two three"));
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("one two three"));
    show(V{0x26000007, cmd::fillWidth, 20, cmd::coldStart} + textAt(10, 10, 27, fill, "one two"));
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("one two"));
}

TEST_F(DrawingCommands, AWordWiderThanTheWidthStandsAlone) {
    show(V{0x26000007, cmd::fillWidth, 20} + textAt(10, 10, 27, fill, "a enormous b"));
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("a", "enormous", "b"));
}

TEST_F(DrawingCommands, FilledLinesStandAFontHeightApartAndAreCenteredAsABlock) {
    constexpr int height = 20; // of font 27
    listOf({cmd::fillWidth, 1});
    const V list = listOf(textAt(100, 100, 27, fill | 0x600, "A B"));
    const int a = widthOf(Generation::E3, 27, "A");
    const int b = widthOf(Generation::E3, 27, "B");
    EXPECT_THAT(list, ElementsAre(saveContext, 0x27000004, beginBitmaps,
                                  vertex2ii(100 - a / 2, 100 - height, 27, 'A'),
                                  vertex2ii(100 - b / 2, 100, 27, 'B'), end, restoreContext));
}

TEST_F(DrawingCommands, LabelsOfButtonsAreFilledToo) {
    show(V{0x26000007, cmd::fillWidth, 40, cmd::button, pair(50, 50), pair(100, 80),
           pair(27, fill)} +
         words("Start run"));
    EXPECT_THAT(host.chip.textOnPanel(), ElementsAre("Start", "run"));
}

} // namespace
