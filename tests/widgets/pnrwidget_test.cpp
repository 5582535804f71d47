#include "buttonrowlisting.h"
#include "measurementscreentest.h"
#include "pnrwidget.h"
#include "streams.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

const std::string counterIcon = R"(COLOR_RGB CBCED0
BEGIN RECTS
VERTEX2II (378,15) (392,27) (396,15) (410,27) (396,31) (410,43) (378,31) (392,43)
END
COLOR_RGB 1A1A1B
BEGIN LINE_STRIP
VERTEX2II (378,15) (392,15) (392,27) (378,27) (378,15)
END
BEGIN LINE_STRIP
VERTEX2II (396,15) (410,15) (410,27) (396,27) (396,15)
END
COLOR_RGB 1A1A1B
BEGIN LINE_STRIP
VERTEX2II (396,31) (410,31) (410,43) (396,43) (396,31)
END
BEGIN LINE_STRIP
VERTEX2II (378,31) (392,31) (392,43) (378,43) (378,31)
END
)";

// What comes after the two images in the stream.
const std::string histogramPicture = R"(BITMAP_HANDLE 0
SETBITMAP 0 6 18 28
BITMAP_HANDLE 1
SETBITMAP 2000 6 24 36
GRADIENT 21 13 CACACA 455 268 F3F3F3
COLOR_RGB 19190C
TEXT 183 28 font 30 CENTER "PNR MODE"
FGCOLOR 00A1DD
TAG_MASK 1
)" + buttonrow::taggedButtons + R"(TAG 5
BUTTON 10 8 40 40 font 27 FLAT ""
TAG_MASK 0
)" + buttonrow::optionsIcon + counterIcon +
                                     buttonrow::startIcon("00A1DD") + R"(BEGIN LINE_STRIP
VERTEX2II (10,58) (470,58) (470,260) (10,260) (10,58)
END
)";

// Bars as lists of vertices, empty for none.
std::string bars(const std::string& bodies, const std::string& fills) {
    const auto vertices = [](const std::string& list) {
        return list.empty() ? "" : "VERTEX2II " + list + "\n";
    };
    return "COLOR_RGB 1A1A1B\nBEGIN RECTS\n" + vertices(bodies) + "END\n" +
           "COLOR_RGB 00A1DD\nBEGIN RECTS\n" + vertices(fills) + "END\n";
}

std::string labels(const std::array<std::string, 4>& texts) {
    return "COLOR_RGB 1A1A1B\n"
           "TEXT 75 70 font 27 CENTER \"" +
           texts[0] + "\"\nTEXT 185 70 font 27 CENTER \"" + texts[1] +
           "\"\nTEXT 295 70 font 27 CENTER \"" + texts[2] + "\"\nTEXT 405 70 font 27 CENTER \"" +
           texts[3] + "\"\n";
}

const std::string noBars = bars("", "");
const std::string histogramZeros = noBars + labels({"     0", "     0", "     0", "     0"});
const std::string accumulateIcon = "BEGIN BITMAPS\nVERTEX2II (19,10,handle 1,cell 0)\nEND\n";
const std::string latestIcon = "BEGIN BITMAPS\nVERTEX2II (23,14)\nEND\n";
const std::string heldModeButton = "FGCOLOR 007C9E\nBUTTON 10 8 40 40 font 27 FLAT \"\"\n";

constexpr double largest = std::numeric_limits<double>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();

// A sample that gives these bins.
DataReaderData sampleOf(double b0, double b1, double b2, double b3) {
    return {{b0 + b1 + b2 + b3, b1 + b2 + b3, b2 + b3, b3}};
}

class PNRWidgetTest : public MeasurementScreenTest<PNRWidget> {
protected:
    // What the next pass draws once this sample has come.
    std::string drawnFor(const DataReaderData& sample) {
        screen.updateData(sample);
        return passTouching(0);
    }

    QSignalSpy gotoCounts{&screen, &PNRWidget::gotoCounts};
};

TEST_F(PNRWidgetTest, OffersItsSignalsAndSlotsInOrder) {
    EXPECT_THAT(methodsOf(PNRWidget::staticMetaObject),
                ElementsAre("start()", "stop()", "gotoCounts()", "gotoOptions()",
                            "updateData(DataReaderData)", "clear()"));
}

TEST_F(PNRWidgetTest, ExecLoadsTheIconsAheadOfThePicture) {
    screen.exec();
    const std::vector<std::uint8_t>& bytes = board.commandBytes();
    const std::vector<std::uint32_t> words = board.commandWords();
    const auto streamAt = [&](std::size_t word, const auto& stream) {
        return std::equal(stream.begin(), stream.end(),
                          bytes.begin() + static_cast<std::ptrdiff_t>(4 * word));
    };
    EXPECT_EQ(words.at(0), 0xFFFFFF22U);
    EXPECT_EQ(words.at(1), 0U);
    EXPECT_TRUE(streamAt(2, assets::derivativeIcon)); // 212 bytes, 53 words
    EXPECT_EQ(words.at(55), 0xFFFFFF22U);
    EXPECT_EQ(words.at(56), 2000U);
    EXPECT_TRUE(streamAt(57, assets::integralIcon)); // 274 bytes, 69 words
    EXPECT_EQ(listCommands({words.begin() + 126, words.end()}),
              staticFrame(histogramPicture) + redraw(histogramZeros + accumulateIcon));
}

TEST_F(PNRWidgetTest, AllBinsZeroDrawNoBarsAndTheDigit0InEachLabel) {
    show();
    EXPECT_EQ(drawnFor({{0, 0, 0, 0}}), redraw(histogramZeros + accumulateIcon));
}

TEST_F(PNRWidgetTest, BinsAreTheDifferencesOfSuccessiveChannels) {
    show();
    EXPECT_EQ(drawnFor({{1750, 750, 250, 0}}),
              redraw(bars("(30,259) (120,84) (140,259) (230,171) (250,259) (340,215)",
                          "(32,257) (118,86) (142,257) (228,173) (252,257) (338,217)") +
                     labels({"  1000", "   500", "   250", "     0"}) + accumulateIcon));
}

TEST_F(PNRWidgetTest, TheLastBinIsTheLastChannel) {
    show();
    EXPECT_EQ(drawnFor({{7, 7, 7, 7}}),
              redraw(bars("(360,259) (450,84)", "(362,257) (448,86)") +
                     labels({"     0", "     0", "     0", "     7"}) + accumulateIcon));
}

TEST_F(PNRWidgetTest, TheScaleNeverDropsBelow1) {
    show();
    EXPECT_EQ(drawnFor(sampleOf(0.5, 0.25, 0, 0)),
              redraw(bars("(30,259) (120,171) (140,259) (230,215)",
                          "(32,257) (118,173) (142,257) (228,217)") +
                     labels({"   0.5", "  0.25", "     0", "     0"}) + accumulateIcon));
}

TEST_F(PNRWidgetTest, ABar4PixelsHighOrLessShowsNoFill) {
    show();
    // 175 * 16 / 700 is 4.
    EXPECT_EQ(drawnFor(sampleOf(700, 16, 0, 17)),
              redraw(bars("(30,259) (120,84) (140,259) (230,255) (360,259) (450,254)",
                          "(32,257) (118,86) (362,257) (448,256)") +
                     labels({"   700", "    16", "     0", "    17"}) + accumulateIcon));
}

TEST_F(PNRWidgetTest, ANegativeBinDrawsNoBarButItsLabelShowsTheValue) {
    show();
    EXPECT_EQ(drawnFor({{10, 15, 0, 0}}),
              redraw(bars("(140,259) (230,84)", "(142,257) (228,86)") +
                     labels({"    -5", "    15", "     0", "     0"}) + accumulateIcon));
}

TEST_F(PNRWidgetTest, BinsCloseToTheEndOfADoublesRangeAreInProportionLikeOthers) {
    show();
    const std::string full = bars("(30,259) (120,84)", "(32,257) (118,86)");
    EXPECT_EQ(drawnFor({{1e307, 0, 0, 0}}),
              redraw(full + labels({"1e+307", "     0", "     0", "     0"}) + accumulateIcon));
    screen.clear();
    EXPECT_EQ(drawnFor({{1.6e308, 0, 0, 0}}),
              redraw(full + labels({"1.6e+308", "     0", "     0", "     0"}) + accumulateIcon));
    EXPECT_EQ(drawnFor({{0.8e308, 0.8e308, 0, 0}}),
              redraw(bars("(30,259) (120,84) (140,259) (230,171)",
                          "(32,257) (118,86) (142,257) (228,173)") +
                     labels({"1.6e+308", "8e+307", "     0", "     0"}) + accumulateIcon));
}

TEST_F(PNRWidgetTest, AnInfiniteBinHasNoBarAndLeavesTheOthersNone) {
    show();
    screen.updateData({{largest, 0, 0, 0}});
    EXPECT_EQ(drawnFor({{largest, 0, 0, 0}}), // the sum is beyond the range of a double
              redraw(noBars + labels({"   inf", "     0", "     0", "     0"}) + accumulateIcon));
    EXPECT_EQ(drawnFor({{0, 0, 0, largest}}),
              redraw(noBars + labels({"   inf", "     0", "-1.798e+308", "1.798e+308"}) +
                     accumulateIcon));
}

TEST_F(PNRWidgetTest, ABinThatIsMinusInfinityOrNoNumberHasNoBarAndTheOthersHaveTheirs) {
    show();
    const std::string bar = bars("(360,259) (450,84)", "(362,257) (448,86)");
    EXPECT_EQ(drawnFor({{0, infinity, 8, 8}}),
              redraw(noBars + labels({"  -inf", "   inf", "     0", "     8"}) + accumulateIcon));
    EXPECT_EQ(drawnFor({{0, -infinity, 0, 0}}), // infinity less infinity
              redraw(bar + labels({"   nan", "   nan", "     0", "     8"}) + accumulateIcon));
    screen.clear();
    EXPECT_EQ(drawnFor({{-infinity, 0, 8, 8}}),
              redraw(bar + labels({"  -inf", "    -8", "     0", "     8"}) + accumulateIcon));
}

TEST_F(PNRWidgetTest, AddsUpSamplesAtFirst) {
    show();
    screen.updateData(sampleOf(1, 2, 3, 4));
    EXPECT_EQ(drawnFor(sampleOf(1, 2, -3, 0)),
              redraw(bars("(30,259) (120,171) (140,259) (230,84) (360,259) (450,84)",
                          "(32,257) (118,173) (142,257) (228,86) (362,257) (448,86)") +
                     labels({"     2", "     4", "     0", "     4"}) + accumulateIcon));
}

TEST_F(PNRWidgetTest, TheModeButtonSwitchesToTheLatestSampleWithoutClearing) {
    show();
    screen.updateData(sampleOf(1, 0, 0, 0));
    const std::string one = bars("(30,259) (120,84)", "(32,257) (118,86)");
    const std::array<std::string, 4> oneLabel{"     1", "     0", "     0", "     0"};
    EXPECT_EQ(passTouching(5), redraw(one + labels(oneLabel) + heldModeButton + accumulateIcon));
    EXPECT_EQ(passTouching(0), redraw(one + labels(oneLabel) + latestIcon));
    screen.updateData(sampleOf(9, 9, 9, 9));
    EXPECT_EQ(drawnFor(sampleOf(1, 0, 0, 0)), redraw(one + labels(oneLabel) + latestIcon));
}

TEST_F(PNRWidgetTest, SwitchingBackStartsAddingOntoTheLastSample) {
    show();
    tap(5);
    screen.updateData(sampleOf(5, 0, 0, 0));
    screen.updateData(sampleOf(3, 0, 0, 0));
    tap(5);
    EXPECT_EQ(drawnFor(sampleOf(1, 0, 0, 0)),
              redraw(bars("(30,259) (120,84)", "(32,257) (118,86)") +
                     labels({"     4", "     0", "     0", "     0"}) + accumulateIcon));
}

TEST_F(PNRWidgetTest, ClearEmptiesTheBinsWithoutARedraw) {
    show();
    screen.updateData(sampleOf(1, 2, 3, 4));
    passTouching(0);
    screen.clear();
    EXPECT_EQ(passTouching(0), "");
    screen.update();
    EXPECT_EQ(passTouching(0), redraw(histogramZeros + accumulateIcon));
}

TEST_F(PNRWidgetTest, StartingARunEmptiesTheHistogramBeforeTheSignal) {
    show();
    screen.updateData(sampleOf(1, 2, 3, 4));
    std::string drawnAtSignal;
    QObject::connect(&screen, &PNRWidget::start, &screen, [&] {
        drawn();
        screen.updateGUI();
        App_Flush_Co_Buffer(&host);
        drawnAtSignal = drawn();
    });
    touch(2);
    screen.loop();
    passTouching(0);
    EXPECT_EQ(start.count(), 1);
    EXPECT_TRUE(screen.isStarted());
    EXPECT_EQ(drawnAtSignal.rfind(histogramZeros, 0), 0U) << drawnAtSignal;
}

TEST_F(PNRWidgetTest, StoppingKeepsTheHistogram) {
    screen.setStarted(true);
    show();
    screen.updateData(sampleOf(1, 0, 0, 0));
    EXPECT_EQ(tap(2), redraw(bars("(30,259) (120,84)", "(32,257) (118,86)") +
                             labels({"     1", "     0", "     0", "     0"}) + accumulateIcon));
    EXPECT_EQ(stop.count(), 1);
    EXPECT_EQ(start.count(), 0);
    EXPECT_FALSE(screen.isStarted());
}

TEST_F(PNRWidgetTest, TheStartButtonShowsThePressedFaceWhileHeldThenTheStopSquare) {
    show();
    EXPECT_EQ(passTouching(2), redraw(histogramZeros + buttonrow::heldRunButton +
                                      buttonrow::startIcon("007C9E") + accumulateIcon));
    EXPECT_EQ(passTouching(0),
              redraw(histogramZeros + accumulateIcon + buttonrow::stopIcon("00A1DD")));
    EXPECT_EQ(passTouching(2), redraw(histogramZeros + buttonrow::heldRunButton + accumulateIcon +
                                      buttonrow::stopIcon("007C9E")));
}

TEST_F(PNRWidgetTest, TheHeldCounterButtonIsDrawnPressedAndItsReleaseLeavesTheScreen) {
    show();
    EXPECT_EQ(passTouching(3), redraw(histogramZeros + buttonrow::heldOtherScreenButton +
                                      counterIcon + accumulateIcon));
    EXPECT_EQ(passTouching(0), "");
    EXPECT_EQ(gotoCounts.count(), 1);
    EXPECT_TRUE(screen.isStoped());
}

TEST_F(PNRWidgetTest, TheHeldOptionsButtonIsDrawnPressedAndItsReleaseLeavesTheScreen) {
    show();
    EXPECT_EQ(passTouching(4),
              redraw(histogramZeros + buttonrow::heldOptionsButton + accumulateIcon));
    EXPECT_EQ(passTouching(0), "");
    EXPECT_EQ(gotoOptions.count(), 1);
    EXPECT_TRUE(screen.isStoped());
}

TEST_F(PNRWidgetTest, OtherTagsOnlyRedraw) {
    show();
    for (const int tag : {1, 6, 48, 254}) {
        screen.buttonReleased(tag);
        EXPECT_EQ(passTouching(0), redraw(histogramZeros + accumulateIcon)) << tag;
    }
    EXPECT_EQ(start.count() + stop.count() + gotoCounts.count() + gotoOptions.count(), 0);
    EXPECT_FALSE(screen.isStoped());
}

TEST_F(PNRWidgetTest, BinsAndModeSurviveLeavingAndReentering) {
    show();
    tap(5);
    screen.updateData(sampleOf(1, 0, 0, 0));
    screen.terminate();
    screen.exec();
    const std::vector<std::uint32_t> words = board.commandWords();
    EXPECT_EQ(listCommands({words.begin() + 126, words.end()}),
              staticFrame(histogramPicture) +
                  redraw(bars("(30,259) (120,84)", "(32,257) (118,86)") +
                         labels({"     1", "     0", "     0", "     0"}) + latestIcon));
}

TEST_F(PNRWidgetTest, LeavingForOneScreenIsNothingElse) {
    show();
    passTouching(3);
    passTouching(0);
    EXPECT_EQ(gotoOptions.count(), 0);
    screen.exec();
    passTouching(4);
    passTouching(0);
    EXPECT_EQ(gotoCounts.count(), 1);
    EXPECT_EQ(gotoOptions.count(), 1);
    EXPECT_EQ(start.count() + stop.count(), 0);
    show();
    EXPECT_EQ(passTouching(2), redraw(histogramZeros + buttonrow::heldRunButton +
                                      buttonrow::startIcon("007C9E") + accumulateIcon));
}

} // namespace
