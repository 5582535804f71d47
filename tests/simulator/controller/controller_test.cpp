#include "host.h"

#include <gtest/gtest.h>

namespace {

using namespace controllertest;

// The chip from the outside: boot, panel, and a screen as the application sends it.
class ControllerOfEveryGeneration : public testing::TestWithParam<Generation> {};

INSTANTIATE_TEST_SUITE_P(Controller, ControllerOfEveryGeneration,
                         testing::Values(Generation::E1, Generation::E2, Generation::E3));

TEST_P(ControllerOfEveryGeneration, ShowsAListSentThroughTheCoprocessor) {
    Host host(GetParam());
    host.bootWithPanel();
    host.send({cmd::dlStart, 0x02FF0000, 0x26000007, 0x00000000, cmd::swap});
    host.waitFrames(2);
    EXPECT_TRUE(host.ringIsEmpty());
    const controller::Frame& frame = host.chip.frame();
    ASSERT_EQ(frame.picture.width, 480);
    ASSERT_EQ(frame.picture.height, 272);
    EXPECT_EQ(frame.picture.at(0, 0), 0xFFFF0000);
    EXPECT_EQ(frame.picture.at(479, 271), 0xFFFF0000);
    EXPECT_TRUE(host.seen.complaints.empty()) << host.seen.complaints.front();
}

TEST_P(ControllerOfEveryGeneration, SaysWhatTextIsOnThePanel) {
    Host host(GetParam());
    host.bootWithPanel();
    host.send(std::vector<std::uint32_t>{cmd::dlStart, 0x26000007, cmd::text, pair(240, 83),
                                         pair(31, 0x600)} +
              words("Please wait") +
              std::vector<std::uint32_t>{cmd::text, pair(240, 127), pair(28, 0x600)} +
              words("Preparing the system") + std::vector<std::uint32_t>{0, cmd::swap});
    host.waitFrames(2);
    EXPECT_EQ(host.chip.textOnPanel(),
              (std::vector<std::string>{"Please wait", "Preparing the system"}));
}

TEST(Controller, TellsItsObserverWhatCrossedTheBus) {
    Host host(Generation::E3);
    host.boot();
    host.seen.transactions.clear();
    const Nanoseconds start = host.now;
    host.read8(host.at.id());
    ASSERT_EQ(host.seen.transactions.size(), 1U);
    const controller::Transaction& transaction = host.seen.transactions.front();
    EXPECT_EQ(transaction.sent, (std::vector<std::uint8_t>{0x30, 0x20, 0x00, 0x00, 0x00}));
    EXPECT_EQ(transaction.received, (std::vector<std::uint8_t>{0, 0, 0, 0, 0x7C}));
    EXPECT_GE(transaction.start, start);
    EXPECT_EQ(transaction.end, host.now);
}

TEST(Controller, WorksWithoutAnObserver) {
    Host host(Generation::E3);
    host.chip.setObserver(nullptr);
    host.bootWithPanel();
    host.send({0xFFFFFFFF});
    host.waitFrames(2);
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
}

TEST(Controller, RepeatedEdgesOfOneLevelAreNone) {
    Host host(Generation::E3);
    host.boot();
    host.chip.setChipSelect(true, host.now);
    host.chip.setChipSelect(false, host.now);
    host.chip.exchange(0x30, host.now);
    host.chip.setChipSelect(false, host.now); // still the same transaction
    for (const int byte : {0x20, 0x00, 0x00}) {
        host.chip.exchange(static_cast<std::uint8_t>(byte), host.now);
    }
    EXPECT_EQ(host.chip.exchange(0, host.now), 0x7C);
    host.chip.setChipSelect(true, host.now);
}

TEST(Controller, TimeThatRunsBackwardsDoesNoHarm) {
    Host host(Generation::E3);
    host.bootWithPanel();
    host.waitFrames(3);
    host.chip.advance(0);
    host.chip.exchange(0, 0);
    EXPECT_EQ(host.chip.framesScanned(), 3U);
}

} // namespace
