#include "commandtext.h"
#include "host.h"

#include <gtest/gtest.h>

namespace {

using namespace controller;
using controllertest::pair;

std::string text(std::uint32_t word, const std::vector<std::uint32_t>& arguments,
                 Generation generation = Generation::E3) {
    return commandText(generation, *commandInfo(generation, word), arguments);
}

TEST(CommandText, ShowsArgumentsAsTheyAreMeant) {
    namespace cmd = controllertest::cmd;
    EXPECT_EQ(text(cmd::dlStart, {}), "CMD_DLSTART");
    EXPECT_EQ(text(cmd::bgColor, {0x123456}), "CMD_BGCOLOR 0x123456");
    EXPECT_EQ(text(cmd::append, {100000, 400}), "CMD_APPEND 0x186A0 400");
    EXPECT_EQ(text(cmd::gradient, {pair(21, 13), 0xCACACA, pair(455, -1), 0xF3F3F3}),
              "CMD_GRADIENT 21 13 0xCACACA 455 -1 0xF3F3F3");
}

TEST(CommandText, NamesTheOptionsOfEachCommand) {
    namespace cmd = controllertest::cmd;
    EXPECT_EQ(text(cmd::text, {pair(1, 2), pair(30, 0)}), "CMD_TEXT 1 2 30 0");
    EXPECT_EQ(text(cmd::text, {pair(1, 2), pair(30, 0x600)}), "CMD_TEXT 1 2 30 OPT_CENTER");
    EXPECT_EQ(text(cmd::text, {pair(1, 2), pair(30, 0xC00)}),
              "CMD_TEXT 1 2 30 OPT_CENTERY|OPT_RIGHTX");
    EXPECT_EQ(text(cmd::button, {pair(1, 2), pair(3, 4), pair(27, 0x100)}),
              "CMD_BUTTON 1 2 3 4 27 OPT_FLAT");
    EXPECT_EQ(text(cmd::toggle, {pair(1, 2), pair(3, 27), pair(0x100, -1)}),
              "CMD_TOGGLE 1 2 3 27 OPT_FLAT -1");
    EXPECT_EQ(text(cmd::number, {pair(1, 2), pair(27, 0x103), 0xFFFFFFFF}),
              "CMD_NUMBER 1 2 27 OPT_SIGNED|0x3 -1");
    EXPECT_EQ(text(cmd::slider, {pair(1, 2), pair(3, 4), pair(0x100, 5), 10}),
              "CMD_SLIDER 1 2 3 4 OPT_FLAT 5 10");
    EXPECT_EQ(text(cmd::clock, {pair(1, 2), pair(3, 0xD000), pair(4, 5), pair(6, 7)}),
              "CMD_CLOCK 1 2 3 OPT_NOHANDS|OPT_NOBACK 4 5 6 7");
    EXPECT_EQ(text(cmd::loadImage, {0, 0x12}), "CMD_LOADIMAGE 0x0 OPT_NODL|OPT_MEDIAFIFO");
}

TEST(CommandText, KeysOptionsHoldTheHeldKeyToo) {
    EXPECT_EQ(text(controllertest::cmd::keys, {pair(1, 2), pair(3, 4), pair(27, 0x100 | '1')}),
              "CMD_KEYS 1 2 3 4 27 OPT_FLAT|0x31");
}

TEST(CommandText, OptionsThatTheGenerationLacksAreNumbers) {
    const std::vector<std::uint32_t> words{pair(1, 2), pair(30, 0x1000)};
    EXPECT_EQ(text(controllertest::cmd::text, words), "CMD_TEXT 1 2 30 OPT_FORMAT");
    EXPECT_EQ(text(controllertest::cmd::text, words, Generation::E1), "CMD_TEXT 1 2 30 0x1000");
}

TEST(CommandText, ShowsThoseArgumentsThatThereAre) {
    EXPECT_EQ(text(controllertest::cmd::text, {pair(1, 2)}), "CMD_TEXT 1 2");
}

} // namespace
