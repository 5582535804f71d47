#include "counterwidget.h"
#include "optionwidget.h"
#include "patience.h"
#include "pnrwidget.h"
#include "qtprinting.h"
#include "screenflow.h"
#include "screentest.h"
#include "scriptedserver.h"

#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// Tags of the two measurement screens' buttons, and of the options screen's back button.
constexpr std::uint32_t run = 2;
constexpr std::uint32_t otherScreen = 3;
constexpr std::uint32_t openOptions = 4;
constexpr std::uint32_t back = 1;

// The screens as main() connects them, with the counter screen shown.
class ScreenFlowTest : public ScreenTest {
protected:
    ScreenFlowTest() {
        server.answer("PARAMS?", {R"({"TimeConst":10})"});
        server.answer("START", {"Ok\n"});
        connectToClient(counter, client);
        connectToClient(histogram, client);
        connectMeasurementScreens(counter, histogram, client, wayBack);
        connectOptionsScreen(counter, histogram, options, wayBack);
        counter.exec();
        drawn();
    }

    // Taps a button of the screen shown; returns all that was drawn.
    static std::string tap(FTWidget& screen, std::uint32_t tag) {
        touch(tag);
        screen.loop();
        touch(0);
        screen.loop();
        return drawn();
    }

    // The screens that have not terminated.
    std::vector<std::string> shown() const {
        std::vector<std::string> names;
        if (running(counter)) {
            names.emplace_back("counter");
        }
        if (running(histogram)) {
            names.emplace_back("histogram");
        }
        if (running(options)) {
            names.emplace_back("options");
        }
        return names;
    }

    ScriptedServer server;
    DataReader client;
    CounterWidget counter{&host};
    PNRWidget histogram{&host};
    WayBack wayBack;
    OptionWidget options{&host, &client};

private:
    static bool running(const FTWidget& screen) {
        return !screen.isStoped() && screen.findChild<QTimer*>()->isActive();
    }
};

TEST_F(ScreenFlowTest, StartAndStopOnTheCounterScreenReachTheServer) {
    tap(counter, run);
    EXPECT_THAT(server.waitForRequests(2), ElementsAre("PARAMS?\n", "START 10\n"));
    tap(counter, run);
    EXPECT_THAT(server.waitForRequests(3), ElementsAre("PARAMS?\n", "START 10\n", "STOP\n"));
}

TEST_F(ScreenFlowTest, StartAndStopOnTheHistogramScreenReachTheServer) {
    tap(counter, otherScreen);
    tap(histogram, run);
    tap(histogram, run);
    EXPECT_THAT(server.waitForRequests(4),
                ElementsAre("STOP\n", "PARAMS?\n", "START 10\n", "STOP\n"));
}

TEST_F(ScreenFlowTest, BothScreensReceiveEverySampleWhicheverIsShown) {
    emit client.dataUpdated({{40, 30, 20, 10}});
    counter.loop();
    EXPECT_THAT(drawn(), HasSubstr("\"    40\""));
    histogram.updateGUI();
    App_Flush_Co_Buffer(&host);
    EXPECT_THAT(drawn(), HasSubstr("TEXT 75 70 font 27 CENTER \"    10\""));
}

TEST_F(ScreenFlowTest, SwitchingFromCounterToHistogramStopsTheRunAndSendsSTOP) {
    tap(counter, run);
    ASSERT_TRUE(counter.isStarted());
    const std::string drawnAtSwitch = tap(counter, otherScreen);
    EXPECT_FALSE(counter.isStarted());
    EXPECT_THAT(shown(), ElementsAre("histogram"));
    EXPECT_THAT(drawnAtSwitch, HasSubstr("\"PNR MODE\""));
    EXPECT_THAT(server.waitForRequests(3), ElementsAre("PARAMS?\n", "START 10\n", "STOP\n"));
}

TEST_F(ScreenFlowTest, SwitchingFromCounterToHistogramClearsTheHistogram) {
    emit client.dataUpdated({{40, 30, 20, 10}});
    EXPECT_THAT(tap(counter, otherScreen), HasSubstr("TEXT 75 70 font 27 CENTER \"     0\""));
}

TEST_F(ScreenFlowTest, SwitchingFromHistogramToCounterStopsTheRunAndKeepsTheCounts) {
    tap(counter, otherScreen);
    tap(histogram, run);
    emit client.dataUpdated({{40, 30, 20, 10}});
    const std::string drawnAtSwitch = tap(histogram, otherScreen);
    EXPECT_FALSE(histogram.isStarted());
    EXPECT_THAT(shown(), ElementsAre("counter"));
    EXPECT_THAT(drawnAtSwitch, HasSubstr("\"COUNTER MODE\""));
    EXPECT_THAT(drawnAtSwitch, HasSubstr("\"    40\""));
    EXPECT_THAT(server.waitForRequests(4),
                ElementsAre("STOP\n", "PARAMS?\n", "START 10\n", "STOP\n"));
}

TEST_F(ScreenFlowTest, ASwitchWithoutARunSendsSTOPToo) {
    tap(counter, otherScreen);
    tap(histogram, otherScreen);
    EXPECT_THAT(server.waitForRequests(2), ElementsAre("STOP\n", "STOP\n"));
}

TEST_F(ScreenFlowTest, CounterToOptionsAndBackReturnsToTheCounterScreen) {
    EXPECT_THAT(tap(counter, openOptions), HasSubstr("\"Options\""));
    EXPECT_THAT(shown(), ElementsAre("options"));
    EXPECT_THAT(tap(options, back), HasSubstr("\"COUNTER MODE\""));
    EXPECT_THAT(shown(), ElementsAre("counter"));
    EXPECT_EQ(server.connections(), 0);
}

TEST_F(ScreenFlowTest, HistogramToOptionsAndBackReturnsToTheHistogramScreen) {
    tap(counter, otherScreen);
    EXPECT_THAT(tap(histogram, openOptions), HasSubstr("\"Options\""));
    EXPECT_THAT(shown(), ElementsAre("options"));
    EXPECT_THAT(tap(options, back), HasSubstr("\"PNR MODE\""));
    EXPECT_THAT(shown(), ElementsAre("histogram"));
}

TEST_F(ScreenFlowTest, BackBeforeAnyWayInLeadsToTheHistogramScreen) {
    counter.terminate();
    emit options.backClicked();
    EXPECT_THAT(drawn(), HasSubstr("\"PNR MODE\""));
    EXPECT_THAT(shown(), ElementsAre("histogram"));
}

TEST_F(ScreenFlowTest, TheWayBackFollowsTheLatestWayIn) {
    tap(counter, openOptions);
    tap(options, back);
    EXPECT_TRUE(wayBack.toCounter);
    tap(counter, otherScreen);
    EXPECT_FALSE(wayBack.toCounter);
    tap(histogram, openOptions);
    tap(options, back);
    tap(histogram, otherScreen);
    EXPECT_TRUE(wayBack.toCounter);
    tap(counter, openOptions);
    tap(options, back);
    EXPECT_THAT(shown(), ElementsAre("counter"));
}

TEST_F(ScreenFlowTest, TheWayBackLeadsToTheScreenThatWasLeftHoweverThatOneWasReached) {
    counter.terminate();
    wayBack.toCounter = true;
    histogram.exec();
    tap(histogram, openOptions);
    tap(options, back);
    EXPECT_THAT(shown(), ElementsAre("histogram"));
}

TEST_F(ScreenFlowTest, AVisitToTheOptionsScreenKeepsTheRunAndTheHistogram) {
    tap(counter, otherScreen);
    tap(histogram, run);
    emit client.dataUpdated({{40, 30, 20, 10}});
    tap(histogram, openOptions);
    const std::string drawnOnReturn = tap(options, back);
    EXPECT_TRUE(histogram.isStarted());
    EXPECT_THAT(drawnOnReturn, HasSubstr("TEXT 75 70 font 27 CENTER \"    10\""));
    EXPECT_THAT(drawnOnReturn, HasSubstr("COLOR_RGB C60D0D")); // the stop square
    EXPECT_THAT(server.waitForRequests(3), ElementsAre("STOP\n", "PARAMS?\n", "START 10\n"));
}

TEST_F(ScreenFlowTest, StartOptionsBackHistogramIsOneSTARTAndNoSTOPBeforeTheSwitch) {
    tap(counter, run);
    tap(counter, openOptions);
    tap(options, back);
    EXPECT_TRUE(counter.isStarted());
    EXPECT_THAT(server.waitForRequests(2), ElementsAre("PARAMS?\n", "START 10\n"));
    tap(counter, otherScreen);
    EXPECT_THAT(server.waitForRequests(3), ElementsAre("PARAMS?\n", "START 10\n", "STOP\n"));
}

TEST_F(ScreenFlowTest, ARunStartedOnTheCounterScreenKeepsPollingDuringAVisitToTheOptionsScreen) {
    server.answer("PARAMS?", {R"({"TimeConst":0.01})"});
    server.answer("DATA?", {R"({"TimeConst":0.01,"Channel0":5})"});
    tap(counter, run);
    tap(counter, openOptions);
    const std::size_t before = server.requests().size();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return server.requests().size() >= before + 3; }, generousMs));
    EXPECT_THAT(shown(), ElementsAre("options"));
    const std::vector<QByteArray> requests = server.requests();
    EXPECT_THAT(std::vector<QByteArray>(requests.begin() + 2, requests.end()), Each("DATA?\n"));
    // What came meanwhile is there on return.
    EXPECT_THAT(tap(options, back), HasSubstr("\"     5\""));
    client.stop();
}

TEST_F(ScreenFlowTest, TheNextScreenHasDrawnItsFirstFrameBeforeTheOldOneTerminates) {
    std::string drawnBefore;
    bool terminatedBefore = true;
    // Delivered after the flow's own handler, still inside the signal.
    QObject::connect(&counter, &CounterWidget::gotoHistogram, &counter, [&] {
        drawnBefore = drawn();
        terminatedBefore = counter.isStoped();
    });
    tap(counter, otherScreen);
    EXPECT_FALSE(terminatedBefore);
    EXPECT_THAT(drawnBefore, HasSubstr("\"PNR MODE\""));
    EXPECT_THAT(drawnBefore, testing::EndsWith("DISPLAY\nSWAP\n"));
}

TEST_F(ScreenFlowTest, AScreenThatWasLeftDrawsNothingMore) {
    tap(counter, openOptions);
    emit client.dataUpdated({{1, 1, 1, 1}});
    drawn();
    // Its last pass may still be armed.
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return !counter.findChild<QTimer*>()->isActive(); }, generousMs));
    EXPECT_THAT(drawn(), Not(HasSubstr("CENTERY|RIGHTX \"     1\"")));
}

} // namespace
