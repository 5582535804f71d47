// The shipped program on the virtual instrument, with this test as its service manager.

#include "notifysocket.h"
#include "virtualinstrument.h"

#include <gmock/gmock.h>

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

constexpr int signPeriodMs = 100;
const std::string signOfLife = "WATCHDOG=1\n";

class SupervisedTest : public testing::Test {
protected:
    SupervisedTest() { setenv("WATCHDOG_USEC", "200000", 1); }
    ~SupervisedTest() override { unsetenv("WATCHDOG_USEC"); }

    // Waits until `count` signs of life have come from now on.
    bool signsCome(int count) {
        manager.messages();
        int seen = 0;
        return QTest::qWaitFor(
            [&] {
                const std::vector<std::string> messages = manager.messages();
                seen += static_cast<int>(std::count(messages.begin(), messages.end(), signOfLife));
                return seen >= count;
            },
            VirtualInstrument::generousMs);
    }

    // All that comes until a condition holds, which looks at that.
    template<class Condition>
    std::vector<std::string> messagesUntil(Condition condition) {
        std::vector<std::string> all;
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                const std::vector<std::string> messages = manager.messages();
                all.insert(all.end(), messages.begin(), messages.end());
                return condition(all);
            },
            VirtualInstrument::generousMs));
        return all;
    }

    NotifySocket manager;
};

TEST_F(SupervisedTest, IsReadyWhenTheCounterScreenIsOnThePanelAndLivesOn) {
    VirtualInstrument instrument(FRONTPANEL);
    std::vector<std::string> start = messagesUntil([](const auto& messages) {
        return std::any_of(messages.begin(), messages.end(), [](const std::string& message) {
            return message.compare(0, 7, "READY=1") == 0;
        });
    });
    const std::vector<std::string> texts = instrument.rig().module().locked(
        [](const controller::Controller& chip) { return chip.textOnPanel(); });
    EXPECT_THAT(texts, Contains("COUNTER MODE"));
    start.erase(std::remove(start.begin(), start.end(), signOfLife), start.end());
    EXPECT_THAT(start, ElementsAre("STATUS=bringing the display up\nEXTEND_TIMEOUT_USEC=20000000\n",
                                   "STATUS=connecting to the measurement server, attempt 1 of 10\n"
                                   "EXTEND_TIMEOUT_USEC=22000000\n",
                                   "READY=1\nSTATUS=running\n"));
    EXPECT_TRUE(signsCome(5));
}

TEST_F(SupervisedTest, LivesOnWhileTheKeypadIsOpen) {
    VirtualInstrument instrument(FRONTPANEL);
    ASSERT_TRUE(instrument.shows("COUNTER MODE"));
    instrument.tap(449, 28);
    ASSERT_TRUE(instrument.shows("Options"));
    instrument.tap(430, 120);
    ASSERT_TRUE(instrument.shows("Trigger level [0], mV"));
    EXPECT_TRUE(signsCome(20)); // ten times what is granted between two
}

TEST_F(SupervisedTest, AStalledCoprocessorEndsTheSignsOfLife) {
    VirtualInstrument instrument(FRONTPANEL);
    ASSERT_TRUE(instrument.shows("COUNTER MODE"));
    ASSERT_TRUE(signsCome(2));
    instrument.rig().module().setCoprocessorStalled(true);
    instrument.rig().module().touch(339, 28); // the held button cannot be drawn
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            manager.messages();
            QTest::qWait(10 * signPeriodMs);
            return manager.messages().empty();
        },
        VirtualInstrument::generousMs));
    instrument.rig().module().setCoprocessorStalled(false);
    instrument.rig().module().release();
    EXPECT_TRUE(signsCome(2));
}

TEST_F(SupervisedTest, WithoutAServerItIsNeverReady) {
    VirtualInstrument instrument(FRONTPANEL, false);
    const std::vector<std::string> messages = messagesUntil(
        [&](const auto& /*messages*/) { return !instrument.rig().application().isRunning(); });
    EXPECT_THAT(messages, Contains(StartsWith("STATUS=connecting to the measurement server, "
                                              "attempt 10 of 10\n")));
    EXPECT_THAT(messages.back(), StartsWith("STATUS=no measurement server\n"));
    EXPECT_THAT(messages, AllOf(Not(Contains(StartsWith("READY"))), Not(Contains(signOfLife))));
}

} // namespace
