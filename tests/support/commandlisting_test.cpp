#include "commandlisting.h"

#include <gtest/gtest.h>

namespace {

TEST(CommandListingTest, ListsOneInstructionALine) {
    EXPECT_EQ(listCommands({0xFFFFFF00, 0x0419190C, 0x03000004, 0x14000001, 0x0E000020, 0x0D0000E0,
                            0x1B0A5010, 0x1C200200, 0x05000001, 0x2A000000, 0x1F000003, 0x21000000,
                            0x00000000, 0xFFFFFF01}),
              "DLSTART\nCOLOR_RGB 19190C\nTAG 4\nTAG_MASK 1\nLINE_WIDTH 32\nPOINT_SIZE 224\n"
              "SCISSOR_XY 330 16\nSCISSOR_SIZE 512 512\nBITMAP_HANDLE 1\nPALETTE_SOURCE 0\n"
              "BEGIN LINES\nEND\nDISPLAY\nSWAP\n");
}

TEST(CommandListingTest, ListsVerticesThatFollowEachOtherOnOneLine) {
    EXPECT_EQ(listCommands({0x9E078000, 0x80000000, 0x21000000, 0x8260A080}),
              "VERTEX2II (240,120) (0,0)\nEND\nVERTEX2II (19,10,handle 1,cell 0)\n");
}

TEST(CommandListingTest, ListsCommandsWithAllTheirArguments) {
    EXPECT_EQ(listCommands({0xFFFFFF0B, 0x000D0015, 0xCACACA, 0x010C01C7, 0xF3F3F3}),
              "GRADIENT 21 13 CACACA 455 268 F3F3F3\n");
    EXPECT_EQ(listCommands({0xFFFFFF0C, 0xFFFF0001, 0x0600001E, 0x00006B4F}),
              "TEXT 1 -1 font 30 CENTER \"Ok\"\n");
    EXPECT_EQ(listCommands({0xFFFFFF0E, 0, 0, 0x0135001D, 0}),
              "KEYS 0 0 0 0 font 29 FLAT|53 \"\"\n");
    EXPECT_EQ(listCommands({0xFFFFFF0C, 0, 0x0000001E, 0}), "TEXT 0 0 font 30 0 \"\"\n");
}

TEST(CommandListingTest, WhatFillsUpAStringIsLeftOut) {
    EXPECT_EQ(listCommands({0xFFFFFF0C, 0, 0x0400001E, 0xEEEE0041, 0x21000000}),
              listCommands({0xFFFFFF0C, 0, 0x0400001E, 0x00000041, 0x21000000}));
}

TEST(CommandListingTest, AStringOfWholeWordsHasItsTerminatorInTheNext) {
    EXPECT_EQ(listCommands({0xFFFFFF0C, 0, 0x0400001E, 0x41414141, 0, 0x21000000}),
              "TEXT 0 0 font 30 CENTERY \"AAAA\"\nEND\n");
}

TEST(CommandListingTest, UnknownWordsAndStrayBitsNeverPassForAnInstruction) {
    EXPECT_EQ(listCommands({0xFFFFFF77}), "WORD FFFFFF77\n");
    EXPECT_EQ(listCommands({0x21000001}), "WORD 21000001\n");
    EXPECT_EQ(listCommands({0x03000100}), "WORD 03000100\n");
    EXPECT_EQ(listCommands({0x1F000013}), "WORD 1F000013\n");
    EXPECT_EQ(listCommands({0x00000001}), "WORD 00000001\n");
}

TEST(CommandListingTest, ACommandThatIsCutShortShows) {
    EXPECT_EQ(listCommands({0xFFFFFF1E, 100000}), "APPEND 100000 -559030611\n");
}

} // namespace
