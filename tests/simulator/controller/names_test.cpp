#include "commandtable.h"
#include "names.h"

#include <gtest/gtest.h>

namespace {

using namespace controller;

TEST(Names, RegistersAreNamedByGeneration) {
    EXPECT_EQ(registerName(Generation::E1, 0x102400), "REG_ID");
    EXPECT_EQ(registerName(Generation::E3, 0x302000), "REG_ID");
    EXPECT_EQ(registerName(Generation::E1, 0x302000), "");
    EXPECT_EQ(registerName(Generation::E3, 0x3020FC), "REG_CMD_WRITE");
    EXPECT_EQ(registerName(Generation::E3, 0x30212C), "REG_TOUCH_TAG");
    EXPECT_EQ(registerName(Generation::E1, 0x102518), "REG_TOUCH_TAG");
}

TEST(Names, ABytePartOfARegisterCarriesItsOffset) {
    EXPECT_EQ(registerName(Generation::E3, 0x3020FD), "REG_CMD_WRITE+1");
}

TEST(Names, RegistersThatAGenerationLacksHaveNoName) {
    EXPECT_EQ(registerName(Generation::E2, 0x3025F0), "");
    EXPECT_EQ(registerName(Generation::E3, 0x3025F0), "REG_FLASH_STATUS");
    EXPECT_EQ(registerName(Generation::E3, 0x302FFC), "");
}

TEST(Names, RegistersInTheCoprocessorsMemoryAreNamed) {
    EXPECT_EQ(registerName(Generation::E1, 0x109000), "REG_TRACKER");
    EXPECT_EQ(registerName(Generation::E2, 0x309004), "REG_TRACKER_1");
    EXPECT_EQ(registerName(Generation::E2, 0x309024), "");
    EXPECT_EQ(registerName(Generation::E3, 0x309024), "REG_FLASH_SIZE");
}

TEST(Names, MemoryIsNamedByRegionAndOffset) {
    EXPECT_EQ(memoryName(Generation::E3, 0), "RAM_G");
    EXPECT_EQ(memoryName(Generation::E3, 100000), "RAM_G+100000");
    EXPECT_EQ(memoryName(Generation::E3, 0x300004), "RAM_DL+4");
    EXPECT_EQ(memoryName(Generation::E1, 0x108010), "RAM_CMD+16");
    EXPECT_EQ(memoryName(Generation::E1, 0x102000), "RAM_PAL");
    EXPECT_EQ(memoryName(Generation::E3, 0x309800), "RAM_ERR_REPORT");
    EXPECT_EQ(memoryName(Generation::E3, 0x2FFFFC), "ROM+1179644");
    EXPECT_EQ(memoryName(Generation::E3, 0x3F0000), "0x3F0000");
}

TEST(Names, HostCommandsAreNamed) {
    EXPECT_EQ(hostCommandName(0x00), "ACTIVE");
    EXPECT_EQ(hostCommandName(0x44), "CLKEXT");
    EXPECT_EQ(hostCommandName(0x68), "RST_PULSE");
    EXPECT_EQ(hostCommandName(0x99), "0x99");
}

TEST(Names, CommandsKnowTheirArguments) {
    const CommandInfo* text = commandInfo(Generation::E1, 0xFFFFFF0C);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text->name, "TEXT");
    EXPECT_EQ(text->words, 2);
    EXPECT_EQ(text->trailer, Trailer::Text);

    const CommandInfo* write = commandInfo(Generation::E3, 0xFFFFFF1A);
    ASSERT_NE(write, nullptr);
    EXPECT_STREQ(write->name, "MEMWRITE");
    EXPECT_EQ(write->trailer, Trailer::Bytes);
    EXPECT_EQ(write->lengthWord, 1);
}

TEST(Names, CommandsExistByGeneration) {
    EXPECT_EQ(commandInfo(Generation::E1, 0xFFFFFF43), nullptr);
    EXPECT_NE(commandInfo(Generation::E2, 0xFFFFFF43), nullptr);
    EXPECT_EQ(commandInfo(Generation::E2, 0xFFFFFF44), nullptr);
    EXPECT_NE(commandInfo(Generation::E3, 0xFFFFFF44), nullptr);
}

TEST(Names, WordsThatAreNoCommandHaveNoInfo) {
    EXPECT_EQ(commandInfo(Generation::E3, 0), nullptr);
    EXPECT_EQ(commandInfo(Generation::E3, 0xFF000000), nullptr);
    EXPECT_EQ(commandInfo(Generation::E3, 0xFFFFFF5E), nullptr);
    EXPECT_EQ(commandInfo(Generation::E3, 0xFFFFFFFF), nullptr);
}

TEST(Names, DisplayListWordsReadAsText) {
    EXPECT_EQ(displayListWordText(0x00000000), "DISPLAY");
    EXPECT_EQ(displayListWordText(0x9E078000), "VERTEX2II 240 120 0 0");
    EXPECT_EQ(displayListWordText(0x0419190C), "COLOR_RGB 0x19190C");
    EXPECT_EQ(displayListWordText(0x26000007), "CLEAR 1 1 1");
    EXPECT_EQ(displayListWordText(0x1F000009), "BEGIN RECTS");
    EXPECT_EQ(displayListWordText(0x0E000020), "LINE_WIDTH 32");
    EXPECT_EQ(displayListWordText(0x7FFFFFFF), "VERTEX2F -1 -1");
    EXPECT_EQ(displayListWordText(0x1501FFFF), "BITMAP_TRANSFORM_A -1");
    EXPECT_EQ(displayListWordText(0xFF123456), "0xFF123456");
    EXPECT_EQ(displayListWordText(0x3F000000), "0x3F000000");
}

TEST(Names, FieldsThatStandForOneOfSeveralThingsAreNamed) {
    EXPECT_EQ(displayListWordText(0x1F000001), "BEGIN BITMAPS");
    EXPECT_EQ(displayListWordText(0x1F00000F), "BEGIN 15");
    EXPECT_EQ(displayListWordText(0x07881002), "BITMAP_LAYOUT L2 8 2");
    EXPECT_EQ(displayListWordText(0x08181002), "BITMAP_SIZE BILINEAR REPEAT BORDER 8 2");
    EXPECT_EQ(displayListWordText(0x09000380), "ALPHA_FUNC GREATER 128");
    EXPECT_EQ(displayListWordText(0x0A0701FF), "STENCIL_FUNC ALWAYS 1 255");
    EXPECT_EQ(displayListWordText(0x0B000014), "BLEND_FUNC SRC_ALPHA ONE_MINUS_SRC_ALPHA");
    EXPECT_EQ(displayListWordText(0x0B00003F), "BLEND_FUNC 7 7");
    EXPECT_EQ(displayListWordText(0x0C00000B), "STENCIL_OP KEEP INCR");
    EXPECT_EQ(displayListWordText(0x2F0004E5), "BITMAP_SWIZZLE RED GREEN BLUE ALPHA");
}

TEST(Names, ScissorWordsAreNarrowerOnTheFirstGeneration) {
    EXPECT_EQ(displayListWordText(Generation::E1, 0x1B000202), "SCISSOR_XY 1 2");
    EXPECT_EQ(displayListWordText(Generation::E3, 0x1B000802), "SCISSOR_XY 1 2");
    EXPECT_EQ(displayListWordText(Generation::E1, 0x1C0C81E0), "SCISSOR_SIZE 800 480");
    EXPECT_EQ(displayListWordText(Generation::E3, 0x1C3201E0), "SCISSOR_SIZE 800 480");
}

} // namespace
