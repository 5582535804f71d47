#include "ftwidget.h"
#include "screentest.h"

#include <QMetaMethod>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Notes what the base asks of it; draws a tag in setup() and another in updateGUI().
class PlainScreen : public FTWidget {
public:
    using FTWidget::FTWidget;

    void setup() override {
        calls.emplace_back("setup");
        App_WrCoCmd_Buffer(host(), 0x03000001);
    }

    void updateGUI() override {
        calls.emplace_back("updateGUI");
        App_WrCoCmd_Buffer(host(), 0x03000002);
    }

    void buttonPressed(int tag) override {
        calls.push_back("pressed " + std::to_string(tag));
        FTWidget::buttonPressed(tag);
    }

    void buttonReleased(int tag) override {
        calls.push_back("released " + std::to_string(tag));
        if (onRelease) {
            onRelease();
        }
        FTWidget::buttonReleased(tag);
    }

    std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }
    bool timerArmed() const { return findChild<QTimer*>()->isActive(); }

    std::vector<std::string> calls;
    std::function<void()> onRelease;
};

class FTWidgetTest : public ScreenTest {
protected:
    // One pass with the finger on `tag`.
    void passTouching(std::uint32_t tag) {
        touch(tag);
        screen.loop();
    }

    void showWithTouches() {
        screen.setKeyProcessEnabled(true);
        screen.exec();
        screen.calls.clear();
        board.clearRecord();
    }

    PlainScreen screen{&host};
};

const std::string staticPart = "TAG 1\n";
const std::string dynamicPart = "TAG 2\n";

TEST_F(FTWidgetTest, IsIdleWhenConstructed) {
    EXPECT_EQ(screen.host(), &host);
    EXPECT_EQ(screen.parent(), nullptr);
    EXPECT_FALSE(screen.isStoped());
    EXPECT_FALSE(screen.keyProcessEnabled());
    EXPECT_EQ(screen.sleepTimer(), 50);
    EXPECT_TRUE(screen.isButtonPressed(0));
    EXPECT_FALSE(screen.timerArmed());
    EXPECT_THAT(board.events(), IsEmpty());
}

TEST_F(FTWidgetTest, OffersItsSlotsInOrder) {
    const QMetaObject& meta = FTWidget::staticMetaObject;
    EXPECT_THAT(methodsOf(meta), ElementsAre("exec()", "terminate()", "update()"));
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        EXPECT_EQ(meta.method(i).methodType(), QMetaMethod::Slot);
    }
}

TEST_F(FTWidgetTest, ExecShowsTheStaticPictureThenTheFirstFrame) {
    screen.exec();
    EXPECT_THAT(screen.calls, ElementsAre("setup", "updateGUI"));
    EXPECT_EQ(drawn(), staticFrame(staticPart) + redraw(dynamicPart));
    EXPECT_TRUE(screen.timerArmed());
}

TEST_F(FTWidgetTest, ExecTakesTheSizeOfTheStaticListOnceTheCoprocessorHasWrittenIt) {
    screen.exec();
    const std::vector<Transaction>& all = board.transactions();
    std::size_t sizeRead = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i] == Transaction::read16(regCmdDl, 456)) {
            sizeRead = i;
        }
    }
    ASSERT_GT(sizeRead, 2U);
    EXPECT_EQ(board.transactions(Transaction::Read, regCmdDl).size(), 1U);
    // The wait for the coprocessor comes before it: read offset, then write offset.
    EXPECT_EQ(all[sizeRead - 2], Transaction::read16(0x3020F8, 8));
    EXPECT_EQ(all[sizeRead - 1], Transaction::read16(0x3020FC, 8));
}

TEST_F(FTWidgetTest, ExecOnANullHostEndsAtOnceWithoutTouchingTheDisplay) {
    screen.setHost(nullptr);
    screen.exec();
    EXPECT_TRUE(screen.isStoped());
    EXPECT_THAT(screen.calls, IsEmpty());
    EXPECT_THAT(board.events(), IsEmpty());
    EXPECT_FALSE(screen.timerArmed());
}

TEST_F(FTWidgetTest, APassWithoutAHostTerminatesTheScreenWithoutTouchingTheDisplay) {
    showWithTouches();
    screen.update();
    screen.setHost(nullptr);
    EXPECT_FALSE(screen.isStoped());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !screen.timerArmed(); }, 10000));
    EXPECT_TRUE(screen.isStoped());
    EXPECT_THAT(screen.calls, IsEmpty());
    EXPECT_THAT(board.events(), IsEmpty());
}

TEST_F(FTWidgetTest, AHandlerThatTakesTheHostAwayEndsTheScreenAtItsNextPass) {
    showWithTouches();
    screen.onRelease = [&] { screen.setHost(nullptr); };
    passTouching(7);
    screen.takeCalls();
    passTouching(0);
    EXPECT_THAT(screen.takeCalls(), ElementsAre("released 7"));
    passTouching(0);
    EXPECT_TRUE(screen.isStoped());
    screen.setHost(&host);
    screen.exec();
    EXPECT_FALSE(screen.isStoped());
}

TEST_F(FTWidgetTest, PassesFollowEachOtherAtTheSleepTimersPace) {
    screen.setSleepTimer(7);
    screen.exec();
    EXPECT_EQ(screen.findChild<QTimer*>()->interval(), 7);
    EXPECT_TRUE(screen.findChild<QTimer*>()->isSingleShot());
    screen.takeCalls();
    screen.update();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !screen.calls.empty(); }, 10000));
    EXPECT_THAT(screen.calls, ElementsAre("updateGUI"));
    EXPECT_TRUE(screen.timerArmed());
}

TEST_F(FTWidgetTest, RedrawsOnceForEachRequest) {
    screen.exec();
    drawn();
    screen.loop();
    EXPECT_EQ(drawn(), "");
    screen.update();
    screen.update();
    screen.loop();
    EXPECT_EQ(drawn(), redraw(dynamicPart));
    screen.loop();
    EXPECT_EQ(drawn(), "");
}

TEST_F(FTWidgetTest, WithTouchesOffNeverReadsTheTagAndRedrawsOnlyAfterUpdate) {
    screen.exec();
    board.clearRecord();
    passTouching(7);
    EXPECT_THAT(board.events(), IsEmpty());
    screen.update();
    passTouching(7);
    EXPECT_THAT(board.transactions(Transaction::Read, regTouchTag), IsEmpty());
    EXPECT_EQ(drawn(), redraw(dynamicPart));
}

TEST_F(FTWidgetTest, APassWithoutTouchOrRequestCostsOneRegisterRead) {
    showWithTouches();
    passTouching(0);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read8(regTouchTag, 0)));
}

TEST_F(FTWidgetTest, ReportsPressAndReleaseOnceAndRedrawsForBoth) {
    showWithTouches();
    passTouching(7);
    EXPECT_TRUE(screen.isButtonPressed(7));
    EXPECT_THAT(screen.takeCalls(), ElementsAre("pressed 7", "updateGUI"));
    passTouching(7);
    EXPECT_THAT(screen.takeCalls(), IsEmpty());
    passTouching(0);
    EXPECT_THAT(screen.takeCalls(), ElementsAre("released 7", "updateGUI"));
    EXPECT_FALSE(screen.isButtonPressed(7));
    passTouching(0);
    EXPECT_THAT(screen.takeCalls(), IsEmpty());
}

TEST_F(FTWidgetTest, TouchingTag7SlidingOntoTag9AndLiftingPresses7AndReleases9) {
    showWithTouches();
    passTouching(7);
    passTouching(9);
    EXPECT_TRUE(screen.isButtonPressed(9));
    passTouching(0);
    EXPECT_THAT(screen.calls, ElementsAre("pressed 7", "updateGUI", "released 9", "updateGUI"));
}

TEST_F(FTWidgetTest, Tag255WhileNothingIsHeldDoesNothing) {
    showWithTouches();
    passTouching(255);
    EXPECT_THAT(screen.calls, IsEmpty());
    EXPECT_TRUE(screen.isButtonPressed(0));
}

TEST_F(FTWidgetTest, Tag255EndsAHold) {
    showWithTouches();
    passTouching(254);
    passTouching(255);
    EXPECT_THAT(screen.calls, ElementsAre("pressed 254", "updateGUI", "released 254", "updateGUI"));
}

TEST_F(FTWidgetTest, TheHeldTagIsStillSetWhileItsReleaseIsReported) {
    showWithTouches();
    bool held = false;
    screen.onRelease = [&] { held = screen.isButtonPressed(7); };
    passTouching(7);
    passTouching(0);
    EXPECT_TRUE(held);
}

TEST_F(FTWidgetTest, AScreenThatAHandlerTerminatesIsNotRedrawnAndEndsAtItsNextPass) {
    showWithTouches();
    screen.onRelease = [&] {
        screen.update();
        screen.terminate();
    };
    passTouching(7);
    screen.takeCalls();
    passTouching(0);
    EXPECT_THAT(screen.takeCalls(), ElementsAre("released 7"));
    EXPECT_TRUE(screen.timerArmed());

    EXPECT_TRUE(QTest::qWaitFor([&] { return !screen.timerArmed(); }, 10000));
    EXPECT_THAT(screen.calls, IsEmpty());
}

TEST_F(FTWidgetTest, ATerminatedScreenDoesNothingInItsLastPass) {
    showWithTouches();
    screen.update();
    screen.terminate();
    EXPECT_TRUE(screen.isStoped());
    passTouching(7);
    EXPECT_THAT(screen.calls, IsEmpty());
    EXPECT_THAT(board.events(), IsEmpty());
}

TEST_F(FTWidgetTest, UpdateOnATerminatedScreenDoesNotSetTheRequest) {
    screen.exec();
    screen.terminate();
    screen.takeCalls();
    screen.update();
    screen.loop();
    EXPECT_THAT(screen.takeCalls(), IsEmpty());
    // The next exec() has its own first frame, and only that.
    screen.exec();
    screen.loop();
    EXPECT_THAT(screen.calls, ElementsAre("setup", "updateGUI"));
}

TEST_F(FTWidgetTest, CanBeExecutedAgainAfterTermination) {
    screen.exec();
    screen.terminate();
    drawn();
    board.poke(regCmdDl, 8);
    screen.exec();
    EXPECT_FALSE(screen.isStoped());
    EXPECT_EQ(drawn(), "DLSTART\nTAG 1\nMEMCPY 100000 3145728 8\nDISPLAY\nSWAP\n"
                       "DLSTART\nAPPEND 100000 8\nTAG 2\nDISPLAY\nSWAP\n");
}

TEST_F(FTWidgetTest, AScreenThatTerminatesItselfInSetupIsDrawnOnceAndNeverRedrawn) {
    class OneShot : public PlainScreen {
    public:
        using PlainScreen::PlainScreen;
        void setup() override {
            PlainScreen::setup();
            terminate();
        }
    };
    OneShot oneShot(&host);
    oneShot.exec();
    EXPECT_THAT(oneShot.calls, ElementsAre("setup"));
    EXPECT_EQ(drawn(), staticFrame(staticPart));
    EXPECT_FALSE(oneShot.timerArmed());
}

TEST_F(FTWidgetTest, TheBaseDrawsNothingDynamicAndRedrawsForPressAndRelease) {
    class Bare : public FTWidget {
    public:
        using FTWidget::FTWidget;
        void setup() override {}
    };
    Bare bare(&host);
    bare.exec();
    drawn();
    bare.buttonPressed(3);
    bare.loop();
    EXPECT_EQ(drawn(), redraw(""));
    bare.buttonReleased(3);
    bare.loop();
    EXPECT_EQ(drawn(), redraw(""));
}

} // namespace
