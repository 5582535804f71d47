#include "buttonrowlisting.h"
#include "counterwidget.h"
#include "measurementscreentest.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string histogramIcon = R"(BEGIN LINES
VERTEX2II (377,45) (411,45)
END
BEGIN RECTS
VERTEX2II (379,44) (387,27) (390,44) (398,13) (401,44) (409,19)
COLOR_RGB F26421
VERTEX2II (381,43) (385,29) (392,43) (396,15) (403,43) (407,21)
END
)";

const std::string counterPicture = R"(GRADIENT 21 13 CACACA 455 268 F3F3F3
COLOR_RGB 19190C
TEXT 160 28 font 30 CENTER "COUNTER MODE"
FGCOLOR 00A1DD
TAG_MASK 1
)" + buttonrow::taggedButtons + "TAG_MASK 0\n" +
                                   buttonrow::optionsIcon + histogramIcon +
                                   buttonrow::startIcon("00A1DD") + R"(BEGIN LINE_STRIP
VERTEX2II (10,58) (235,58) (235,155) (10,155) (10,58)
END
BEGIN LINE_STRIP
VERTEX2II (245,58) (470,58) (470,155) (245,155) (245,58)
END
BEGIN LINE_STRIP
VERTEX2II (10,165) (235,165) (235,262) (10,262) (10,165)
END
BEGIN LINE_STRIP
VERTEX2II (245,165) (470,165) (470,262) (245,262) (245,165)
END
COLOR_RGB 00A1DD
SCISSOR_XY 12 60
BEGIN EDGE_STRIP_A
VERTEX2II (60,58) (10,108)
END
SCISSOR_XY 247 60
BEGIN EDGE_STRIP_A
VERTEX2II (295,58) (245,108)
END
SCISSOR_XY 12 167
BEGIN EDGE_STRIP_A
VERTEX2II (60,165) (10,215)
END
SCISSOR_XY 247 167
COLOR_RGB 00A1DD
BEGIN EDGE_STRIP_A
VERTEX2II (295,165) (245,215)
END
COLOR_RGB 19190C
SCISSOR_XY 0 0
BEGIN LINES
VERTEX2II (60,58) (10,108) (295,58) (245,108) (60,165) (10,215) (295,165) (245,215)
END
TEXT 23 74 font 28 CENTER "0"
TEXT 258 74 font 28 CENTER "1"
TEXT 23 181 font 28 CENTER "2"
TEXT 258 181 font 28 CENTER "3"
)";

std::string values(const std::string& v0, const std::string& v1, const std::string& v2,
                   const std::string& v3) {
    return "TEXT 219 112 font 31 CENTERY|RIGHTX \"" + v0 +
           "\"\n"
           "TEXT 454 112 font 31 CENTERY|RIGHTX \"" +
           v1 +
           "\"\n"
           "TEXT 219 219 font 31 CENTERY|RIGHTX \"" +
           v2 +
           "\"\n"
           "TEXT 454 219 font 31 CENTERY|RIGHTX \"" +
           v3 + "\"\n";
}

const std::string counterZeros = values("     0", "     0", "     0", "     0");

class CounterWidgetTest : public MeasurementScreenTest<CounterWidget> {
protected:
    QSignalSpy gotoHistogram{&screen, &CounterWidget::gotoHistogram};
};

TEST_F(CounterWidgetTest, OffersItsSignalsAndSlotInOrder) {
    EXPECT_THAT(methodsOf(CounterWidget::staticMetaObject),
                ElementsAre("start()", "stop()", "gotoHistogram()", "gotoOptions()",
                            "updateData(DataReaderData)"));
}

TEST_F(CounterWidgetTest, IsStoppedAndReadsTouchesWhenConstructed) {
    EXPECT_FALSE(screen.isStarted());
    EXPECT_TRUE(screen.keyProcessEnabled());
}

TEST_F(CounterWidgetTest, ExecDrawsThePictureAndFourZeros) {
    screen.exec();
    EXPECT_EQ(drawn(), staticFrame(counterPicture) + redraw(counterZeros));
}

TEST_F(CounterWidgetTest, ARedrawIsTheseWordsOnTheBus) {
    show();
    std::memset(CmdBuffer, 0, sizeof CmdBuffer); // what strings are padded with
    screen.update();
    screen.loop();
    EXPECT_THAT(board.commandWords(),
                ElementsAre(0xFFFFFF00, 0xFFFFFF1E, 100000, 456,                        //
                            0xFFFFFF0C, 0x007000DB, 0x0C00001F, 0x20202020, 0x00003020, //
                            0xFFFFFF0C, 0x007001C6, 0x0C00001F, 0x20202020, 0x00003020, //
                            0xFFFFFF0C, 0x00DB00DB, 0x0C00001F, 0x20202020, 0x00003020, //
                            0xFFFFFF0C, 0x00DB01C6, 0x0C00001F, 0x20202020, 0x00003020, //
                            0x00000000, 0xFFFFFF01));
}

TEST_F(CounterWidgetTest, ARedrawOnAnIdleCoprocessorTakes25MessagesAnd153Bytes) {
    show();
    screen.updateData({{12.5, 0, 9999, 3.142}});
    screen.loop();
    EXPECT_EQ(board.messageCount(), 25U);
    EXPECT_EQ(board.byteCount(), 153U);
    EXPECT_EQ(drawn(), redraw(values("  12.5", "     0", "  9999", " 3.142")));
}

TEST_F(CounterWidgetTest, ANewSampleIsDrawnAtTheNextPassAndReplacesAllValues) {
    show();
    screen.updateData({{1, 2, 3, 4}});
    EXPECT_EQ(board.messageCount(), 0U);
    screen.updateData({{12.5, 1234567, 0.0001234, 1.5e10}});
    EXPECT_EQ(passTouching(0), redraw(values("  12.5", "1.235e6", "0.0001234", "1.5e+10")));
    EXPECT_EQ(passTouching(0), "");
    screen.updateData({{0, -7.25, 1.234e-05, 999.96}});
    EXPECT_EQ(passTouching(0), redraw(values("     0", " -7.25", "1.234e-05", "  1000")));
}

TEST_F(CounterWidgetTest, TheStartButtonShowsThePressedFaceWhileHeldThenTheStopSquare) {
    show();
    // The press is drawn in the pass that sees it.
    EXPECT_EQ(passTouching(2),
              redraw(counterZeros + buttonrow::heldRunButton + buttonrow::startIcon("007C9E")));
    EXPECT_EQ(start.count(), 0);
    EXPECT_EQ(passTouching(0), redraw(counterZeros + buttonrow::stopIcon("00A1DD")));
    EXPECT_EQ(start.count(), 1);
    EXPECT_EQ(stop.count(), 0);
    EXPECT_TRUE(screen.isStarted());
}

TEST_F(CounterWidgetTest, HoldingTheStartButtonWhileRunningShowsThePressedFaceWithoutTheTriangle) {
    screen.setStarted(true);
    show();
    EXPECT_EQ(passTouching(2),
              redraw(counterZeros + buttonrow::heldRunButton + buttonrow::stopIcon("007C9E")));
}

TEST_F(CounterWidgetTest, TheNextReleaseStopsAndBringsTheTriangleBack) {
    screen.setStarted(true);
    show();
    EXPECT_EQ(tap(2), redraw(counterZeros));
    EXPECT_EQ(start.count(), 0);
    EXPECT_EQ(stop.count(), 1);
    EXPECT_FALSE(screen.isStarted());
}

TEST_F(CounterWidgetTest, TheRunButtonNeverEndsTheScreen) {
    show();
    tap(2);
    EXPECT_FALSE(screen.isStoped());
}

TEST_F(CounterWidgetTest, TheHeldHistogramButtonIsDrawnPressedAndItsReleaseLeavesTheScreen) {
    show();
    EXPECT_EQ(passTouching(3),
              redraw(counterZeros + buttonrow::heldOtherScreenButton + histogramIcon));
    bool stoppedAtSignal = true;
    QObject::connect(&screen, &CounterWidget::gotoHistogram, &screen,
                     [&] { stoppedAtSignal = screen.isStoped(); });
    EXPECT_EQ(passTouching(0), "");
    EXPECT_EQ(gotoHistogram.count(), 1);
    EXPECT_FALSE(stoppedAtSignal);
    EXPECT_TRUE(screen.isStoped());
}

TEST_F(CounterWidgetTest, TheHeldOptionsButtonIsDrawnPressedAndItsReleaseLeavesTheScreen) {
    show();
    EXPECT_EQ(passTouching(4), redraw(counterZeros + buttonrow::heldOptionsButton));
    EXPECT_EQ(passTouching(0), "");
    EXPECT_EQ(gotoOptions.count(), 1);
    EXPECT_TRUE(screen.isStoped());
}

TEST_F(CounterWidgetTest, WhileRunningTheStopSquareIsDrawnOverHeldNeighboursToo) {
    screen.setStarted(true);
    show();
    EXPECT_EQ(passTouching(4),
              redraw(counterZeros + buttonrow::heldOptionsButton + buttonrow::stopIcon("00A1DD")));
}

TEST_F(CounterWidgetTest, OtherTagsOnlyRedraw) {
    show();
    for (int tag = 1; tag <= 255; ++tag) {
        if (tag >= 2 && tag <= 4) {
            continue;
        }
        screen.buttonReleased(tag);
        screen.loop();
        EXPECT_EQ(drawn(), redraw(counterZeros)) << tag;
    }
    EXPECT_EQ(start.count() + stop.count() + gotoHistogram.count() + gotoOptions.count(), 0);
    EXPECT_FALSE(screen.isStoped());
}

TEST_F(CounterWidgetTest, StartedAndValuesSurviveLeavingAndReentering) {
    show();
    screen.setStarted(true);
    screen.updateData({{1, 2, 3, 4}});
    screen.terminate();
    screen.exec();
    EXPECT_EQ(drawn(),
              staticFrame(counterPicture) + redraw(values("     1", "     2", "     3", "     4") +
                                                   buttonrow::stopIcon("00A1DD")));
}

TEST_F(CounterWidgetTest, ASampleForAScreenThatIsNotShownIsKeptForTheNextExec) {
    screen.terminate();
    screen.updateData({{5, 0, 0, 0}});
    screen.loop();
    EXPECT_THAT(board.events(), IsEmpty());
    screen.exec();
    EXPECT_EQ(drawn(),
              staticFrame(counterPicture) + redraw(values("     5", "     0", "     0", "     0")));
}

TEST_F(CounterWidgetTest, UnderEVE1TheScissorWordsHaveThatGenerationsLayout) {
    DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_1);
    board.poke(0x1024EC, 456);
    screen.exec();
    const std::vector<std::uint32_t> words = board.commandWords();
    EXPECT_THAT(words, testing::Contains(0x1B029410U)); // SCISSOR_XY 330 16
    EXPECT_THAT(words, testing::Contains(0x1C080200U)); // SCISSOR_SIZE 512 512
    EXPECT_EQ(board.transactions(Transaction::Write, 0x108000).size(), 1U);
}

TEST_F(CounterWidgetTest, LeavingForOneScreenIsNothingElse) {
    show();
    passTouching(3);
    passTouching(0);
    EXPECT_EQ(gotoOptions.count(), 0);
    screen.exec();
    passTouching(4);
    passTouching(0);
    EXPECT_EQ(gotoHistogram.count(), 1);
    EXPECT_EQ(gotoOptions.count(), 1);
    EXPECT_EQ(start.count() + stop.count(), 0);
    EXPECT_FALSE(screen.isStarted());
}

} // namespace
