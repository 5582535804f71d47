#include "faultywires.h"
#include "recordingwires.h"

#include <gmock/gmock.h>

namespace panel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FaultyWiresTest : public testing::Test {
protected:
    void add(const QString& text) {
        QString error;
        const auto order = parseFaultOrder(text.split(' '), &error);
        ASSERT_TRUE(order) << error.toStdString();
        m_strikes.begin(order->name, order->text);
        m_wires.add(*order);
    }

    // Whether a message of so many bytes, all 0xAA, gets through.
    bool send(std::size_t length) {
        const std::vector<std::uint8_t> bytes(length, 0xAA);
        try {
            m_wires.transfer(bytes.data(), nullptr, length);
        } catch (const board::TransferFailed&) {
            return false;
        }
        return true;
    }

    RecordingWires m_behind;
    Strikes m_strikes;
    FaultyWires m_wires{m_behind, m_strikes};
};

TEST_F(FaultyWiresTest, PassEverythingOnWithoutAFault) {
    m_wires.powerDown(true);
    m_wires.chipSelect(false);
    EXPECT_TRUE(send(2));
    EXPECT_THAT(m_behind.log(), ElementsAre("PD 1", "CS 0", "sends aaaa"));
}

TEST_F(FaultyWiresTest, NothingGetsOverADeadBus) {
    add("bus-dead");
    EXPECT_FALSE(send(1));
    EXPECT_FALSE(send(100));
    EXPECT_THAT(m_behind.log(), IsEmpty());
    EXPECT_EQ(m_strikes.count("bus-dead"), 2);
    m_wires.remove("bus-dead");
    EXPECT_TRUE(send(1));
}

TEST_F(FaultyWiresTest, OneMessageFails) {
    add("bus-fails-at 3");
    EXPECT_TRUE(send(1));
    EXPECT_TRUE(send(1));
    EXPECT_FALSE(send(1));
    EXPECT_TRUE(send(1));
    EXPECT_EQ(m_strikes.count("bus-fails-at"), 1);
}

TEST_F(FaultyWiresTest, OneBurstFails) {
    add("bus-fails-at burst 2");
    EXPECT_TRUE(send(4));
    EXPECT_TRUE(send(5));
    EXPECT_TRUE(send(1));
    EXPECT_FALSE(send(5));
    EXPECT_TRUE(send(5));
}

TEST_F(FaultyWiresTest, FaultsBegunAnewCountAnew) {
    add("bus-fails-at 2");
    EXPECT_TRUE(send(1));
    add("bus-fails-at 2");
    EXPECT_TRUE(send(1));
    EXPECT_FALSE(send(1));
}

TEST_F(FaultyWiresTest, SomeMessagesFailAtRandomAndTheSameOnesForTheSameSeed) {
    std::vector<std::vector<bool>> runs;
    for (const char* const fault :
         {"bus-fails-randomly 10 1", "bus-fails-randomly 10 1", "bus-fails-randomly 10 2"}) {
        add(fault);
        auto& run = runs.emplace_back();
        for (int i = 0; i < 1000; ++i) {
            run.push_back(send(1));
        }
        EXPECT_NEAR(static_cast<double>(std::count(run.begin(), run.end(), false)), 100, 50);
    }
    EXPECT_EQ(runs[0], runs[1]);
    EXPECT_NE(runs[0], runs[2]);
}

TEST_F(FaultyWiresTest, OneBitIsWrongBothWays) {
    add("bus-corrupts 2");
    EXPECT_TRUE(send(3));
    std::uint8_t byte = 0xAA;
    m_wires.transfer(&byte, &byte, 1);
    EXPECT_EQ(byte, RecordingWires::answer ^ 0x10);
    EXPECT_TRUE(send(3));
    add("bus-corrupts");
    EXPECT_TRUE(send(3));
    EXPECT_THAT(m_behind.log(),
                ElementsAre("sends aaaaaa", "exchanges ba", "sends aaaaaa", "sends aabaaa"));
}

TEST_F(FaultyWiresTest, CorruptedMessageThatOnlyReceives) {
    add("bus-corrupts");
    std::array<std::uint8_t, 2> bytes{};
    m_wires.transfer(nullptr, bytes.data(), bytes.size());
    EXPECT_THAT(bytes, ElementsAre(RecordingWires::answer, RecordingWires::answer ^ 0x10));
}

TEST_F(FaultyWiresTest, SlowBusTakesItsTime) {
    add("bus-slow 30ms");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(send(1));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
    EXPECT_THAT(m_behind.log(), ElementsAre("sends aa"));
}

TEST_F(FaultyWiresTest, LevelsAreLostWhilePinsFail) {
    add("pins-fail");
    m_wires.powerDown(true);
    m_wires.chipSelect(true);
    EXPECT_TRUE(send(1));
    m_wires.remove("pins-fail");
    m_wires.chipSelect(false);
    EXPECT_THAT(m_behind.log(), ElementsAre("sends aa", "CS 0"));
    EXPECT_EQ(m_strikes.count("pins-fail"), 2);
}

TEST_F(FaultyWiresTest, StrikesAreToldOnceAndCounted) {
    testing::internal::CaptureStderr();
    add("bus-dead");
    send(1);
    send(2);
    m_strikes.end("bus-dead");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "panelsim: fault bus-dead: message 1, of 1 bytes, fails\n"
              "panelsim: fault bus-dead: has struck 2 times\n");
}

TEST(Strikes, TheFirstIsToldToWhoeverWantsToKnow) {
    QStringList told;
    Strikes strikes([&told](const QString& text) { told += text; });
    strikes.begin("bus-dead", "bus-dead after 1s");
    strikes.add("bus-dead", "one");
    strikes.add("bus-dead", "two");
    EXPECT_EQ(told, QStringList("bus-dead after 1s: one"));
    strikes.begin("bus-dead", "bus-dead");
    strikes.add("bus-dead", "three");
    EXPECT_EQ(told.last().toStdString(), "bus-dead: three");
}

} // namespace
} // namespace panel
