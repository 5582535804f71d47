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

} // namespace
