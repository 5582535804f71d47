#include "App_Common.h"
#include "drawingtest.h"
#include "e3addresses.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <numeric>
#include <type_traits>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

static_assert(sizeof CmdBuffer == 4096 && sizeof DlBuffer == 8192);
static_assert(std::is_same_v<decltype(CmdBuffer + 4), uint8_t*>);

class AppCommonTest : public DrawingTest {
protected:
    // Appends the words first, first + 1, ... to the command buffer.
    void appendWords(uint32_t first, uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) {
            App_WrCoCmd_Buffer(&host, first + i);
        }
    }

    static Words consecutive(uint32_t first, std::size_t count) {
        Words words(count);
        std::iota(words.begin(), words.end(), first);
        return words;
    }
};

// --- command buffer: words

TEST_F(AppCommonTest, WordsAreHeldBackLittleEndianUntilAFlush) {
    App_WrCoCmd_Buffer(&host, 0x04030201);
    App_WrCoCmd_Buffer(&host, 0x08070605);
    EXPECT_EQ(CmdBuffer_Index, 8U);
    EXPECT_TRUE(board.events().empty());
    EXPECT_TRUE(std::equal(CmdBuffer, CmdBuffer + 8, consecutive(1, 8).begin()));

    App_Flush_Co_Buffer(&host);
    EXPECT_EQ(CmdBuffer_Index, 0U);
    EXPECT_THAT(board.transactions(Transaction::Write, ramCmd),
                ElementsAre(Transaction::write(ramCmd, {1, 2, 3, 4, 5, 6, 7, 8})));
}

TEST_F(AppCommonTest, The1025thWordSendsTheFirst1024WithoutAMessage) {
    appendWords(0, 1024);
    EXPECT_TRUE(board.events().empty());
    EXPECT_EQ(CmdBuffer_Index, 4096U);

    testing::internal::CaptureStdout();
    App_WrCoCmd_Buffer(&host, 1024);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(CmdBuffer_Index, 4U);
    EXPECT_EQ(board.commandWords(), consecutive(0, 1024));
    EXPECT_EQ(flushedWords(), consecutive(0, 1025));
}

TEST_F(AppCommonTest, AFullBufferIsSentWithoutWaitingForTheCoprocessor) {
    // 4092 bytes fit the FIFO at once, the last word when there is room again.
    appendWords(0, 1024);
    App_WrCoCmd_Buffer(&host, 1024);
    EXPECT_THAT(board.transactions(Transaction::Read, regCmdWrite), IsEmpty());
    EXPECT_EQ(board.transactions().back(), Transaction::write16(regCmdWrite, 0));
}

TEST_F(AppCommonTest, FlushingWaitsUntilTheCoprocessorHasConsumedEverything) {
    appendWords(0, 1);
    App_Flush_Co_Buffer(&host);
    EXPECT_EQ(board.transactions().back(), Transaction::read16(regCmdWrite, 4));
    EXPECT_EQ(host.cmd_write_offset, 4);
}

TEST_F(AppCommonTest, FlushingWithoutWaitingLooksOnlyForFreeSpace) {
    appendWords(7, 1);
    App_Flush_Co_Buffer_nowait(&host);
    EXPECT_EQ(CmdBuffer_Index, 0U);
    EXPECT_THAT(board.commandWords(), ElementsAre(7));
    EXPECT_THAT(board.transactions(Transaction::Read, regCmdWrite), IsEmpty());
    EXPECT_EQ(board.transactions().back(), Transaction::write16(regCmdWrite, 4));
}

TEST_F(AppCommonTest, FlushingAnEmptyBufferSendsNothing) {
    App_Flush_Co_Buffer(&host);
    App_Flush_Co_Buffer_nowait(&host);
    EXPECT_TRUE(board.events().empty());
    EXPECT_EQ(CmdBuffer_Index, 0U);
}

TEST_F(AppCommonTest, SettingTheIndexToZeroDiscardsPendingWords) {
    appendWords(0, 3);
    App_Set_CmdBuffer_Index(0);
    EXPECT_THAT(flushedWords(), IsEmpty());
    App_WrDl_Buffer(&host, 1);
    App_Set_DlBuffer_Index(0);
    App_Flush_DL_Buffer(&host);
    EXPECT_TRUE(board.events().empty());
}

TEST_F(AppCommonTest, SettingTheIndexMovesTheNextWord) {
    App_Set_CmdBuffer_Index(8);
    App_WrCoCmd_Buffer(&host, 7);
    EXPECT_EQ(CmdBuffer_Index, 12U);
    EXPECT_THAT(flushedWords(), ElementsAre(0, 0, 7));
}

// --- command buffer: strings

TEST_F(AppCommonTest, StringsTakeTheirTerminatorAndWholeWords) {
    App_WrCoStr_Buffer(&host, "");
    EXPECT_EQ(CmdBuffer_Index, 4U);
    App_WrCoStr_Buffer(&host, "ab");
    EXPECT_EQ(CmdBuffer_Index, 8U);
    App_WrCoStr_Buffer(&host, "abc");
    EXPECT_EQ(CmdBuffer_Index, 12U);
    App_WrCoStr_Buffer(&host, "abcd");
    EXPECT_EQ(CmdBuffer_Index, 20U);
    EXPECT_THAT(flushedWords(), ElementsAre(0, 0x00006261, 0x00636261, 0x64636261, 0));
}

TEST_F(AppCommonTest, ThePadBehindAStringKeepsWhatTheBufferHeld) {
    std::memset(CmdBuffer, 0xEE, sizeof CmdBuffer);
    App_WrCoStr_Buffer(&host, "abcd");
    EXPECT_THAT(flushedWords(), ElementsAre(0x64636261, 0xEEEEEE00));
}

TEST_F(AppCommonTest, AStringAtAFullBufferFlushesItWithAMessageAndWaits) {
    appendWords(0, 1024);
    testing::internal::CaptureStdout();
    App_WrCoStr_Buffer(&host, "abc");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "CmdBuffer overflow\n");
    EXPECT_EQ(board.commandWords(), consecutive(0, 1024));
    const Transaction& last = board.transactions().back();
    EXPECT_EQ(last.kind, Transaction::Read);
    EXPECT_EQ(last.address, regCmdWrite);
    EXPECT_EQ(CmdBuffer_Index, 4U);
    EXPECT_EQ(flushedWords().back(), 0x00636261U);
}

TEST_F(AppCommonTest, AStringThatStartsInTheBufferIsCopiedWholePastItsEnd) {
    appendWords(0, 1023);
    testing::internal::CaptureStdout();
    App_WrCoStr_Buffer(&host, "abcdefghijk");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(CmdBuffer_Index, 4092U + 12U);

    App_WrCoCmd_Buffer(&host, 0x1234); // finds the buffer full
    EXPECT_EQ(CmdBuffer_Index, 4U);
    const Words words = flushedWords();
    ASSERT_EQ(words.size(), 1027U);
    EXPECT_THAT(Words(words.begin() + 1023, words.end()),
                ElementsAre(0x64636261, 0x68676665, 0x006B6A69, 0x1234));
}

TEST_F(AppCommonTest, AStringLongerThanTheRoomBehindTheBufferIsCutWithAMessage) {
    constexpr uint32_t room = 4096 + 512;
    const std::string fits(room - 4092 - 1, 'x');
    for (const std::string& text : {fits, fits + "y", std::string(5000, 'x')}) {
        App_Set_CmdBuffer_Index(0);
        appendWords(0, 1023);
        testing::internal::CaptureStdout();
        App_WrCoStr_Buffer(&host, text.c_str());
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  text == fits ? "" : "CmdBuffer overflow\n");
        EXPECT_EQ(CmdBuffer_Index, room);
        board.clearRecord();
        Gpu_Hal_ResetCmdFifo(&host);
        flushedWords();
        ASSERT_THAT(board.commandBytes(), SizeIs(room));
        EXPECT_EQ(board.commandBytes()[room - 2], 'x');
        EXPECT_EQ(board.commandBytes()[room - 1], 0);
    }
}

TEST_F(AppCommonTest, TheBytesOfAStringAreCountedModulo65536) {
    testing::internal::CaptureStdout();
    App_WrCoStr_Buffer(&host, std::string(65535, 'x').c_str());
    EXPECT_EQ(CmdBuffer_Index, 0U);
    App_WrCoStr_Buffer(&host, std::string(65536 + 5, 'x').c_str());
    EXPECT_EQ(CmdBuffer_Index, 8U);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "CmdBuffer overflow\nCmdBuffer overflow\n");
}

// --- indices that no buffer has

constexpr uint32_t strangeIndices[] = {4093,  4095,       4096,     4608,       4609,
                                       8189,  8190,       8191,     8192,       8193,
                                       65536, 0x7FFFFFFF, 1U << 31, 0xFFFFFFFC, 0xFFFFFFFF};

// Under the sanitizers, this is about memory too.
TEST_F(AppCommonTest, NoIndexLeadsOutOfTheCommandBuffer) {
    testing::internal::CaptureStdout();
    for (const uint32_t index : strangeIndices) {
        SCOPED_TRACE(index);
        App_Set_CmdBuffer_Index(index);
        App_WrCoCmd_Buffer(&host, 1);
        EXPECT_EQ(CmdBuffer_Index, index < 4096 ? index + 4 : 4);
        App_Set_CmdBuffer_Index(index);
        App_WrCoStr_Buffer(&host, "abc");
        EXPECT_EQ(CmdBuffer_Index, index < 4096 ? index + 4 : 4);
        for (const auto flush : {App_Flush_Co_Buffer, App_Flush_Co_Buffer_nowait}) {
            App_Set_CmdBuffer_Index(index);
            board.clearRecord();
            flush(&host);
            EXPECT_LE(board.commandBytes().size(), 4096U + 512U);
            EXPECT_EQ(CmdBuffer_Index, 0U);
        }
    }
    testing::internal::GetCapturedStdout();
}

TEST_F(AppCommonTest, NoIndexLeadsOutOfTheDisplayListBuffer) {
    for (const uint32_t index : strangeIndices) {
        SCOPED_TRACE(index);
        App_Set_DlBuffer_Index(index);
        testing::internal::CaptureStdout();
        App_WrDl_Buffer(&host, 1);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  index + 4ULL > 8192 ? "DlBuffer overflow\n" : "");
        App_Set_DlBuffer_Index(index);
        board.clearRecord();
        App_Flush_DL_Buffer(&host);
        ASSERT_THAT(board.transactions(), SizeIs(1));
        EXPECT_EQ(board.transactions().front().data.size(), std::min(index, 8192U));
        EXPECT_EQ(DlBuffer_Index, 0U);
    }
}

// --- display-list buffer

TEST_F(AppCommonTest, DisplayListWordsGoStraightToDisplayListMemory) {
    App_WrDl_Buffer(&host, 0x26000007);
    App_WrDl_Buffer(&host, 0);
    EXPECT_EQ(DlBuffer_Index, 8U);
    EXPECT_TRUE(board.events().empty());
    App_Flush_DL_Buffer(&host);
    EXPECT_EQ(DlBuffer_Index, 0U);
    EXPECT_THAT(board.transactions(),
                ElementsAre(Transaction::write(ramDl, {7, 0, 0, 0x26, 0, 0, 0, 0})));
}

TEST_F(AppCommonTest, FlushingAnEmptyDisplayListBufferSendsNothing) {
    App_Flush_DL_Buffer(&host);
    EXPECT_TRUE(board.events().empty());
}

TEST_F(AppCommonTest, The2049thDisplayListWordIsDroppedWithAMessageAndCounted) {
    testing::internal::CaptureStdout();
    for (uint32_t i = 0; i < 2048; ++i) {
        App_WrDl_Buffer(&host, i);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    testing::internal::CaptureStdout();
    App_WrDl_Buffer(&host, 2048);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "DlBuffer overflow\n");
    EXPECT_EQ(DlBuffer_Index, 8196U);
}

TEST_F(AppCommonTest, FlushingAnOverflownDisplayListBufferWritesWhatItHolds) {
    testing::internal::CaptureStdout();
    for (uint32_t i = 0; i < 2050; ++i) {
        App_WrDl_Buffer(&host, i);
    }
    testing::internal::GetCapturedStdout();
    App_Flush_DL_Buffer(&host);
    EXPECT_EQ(DlBuffer_Index, 0U);
    ASSERT_EQ(board.transactions().size(), 1U);
    EXPECT_EQ(board.transactions().front().data.size(), 8192U);
    EXPECT_EQ(board.peek(ramDl + 8188), 2047U);
}

// --- touch

// A tag read with a touch of nothing, whatever an earlier test has left.
template<typename Poll>
void release(Poll poll) {
    board.poke(regTouchTag, 0);
    poll();
}

TEST_F(AppCommonTest, ATagIsReportedOnceAtTheFirstPollAfterItsRelease) {
    const auto poll = [this] { return App_Read_Tag(&host); };
    release(poll);
    board.queueReads(regTouchTag, {5, 5, 5, 0, 0, 0});
    std::vector<int> reported(6);
    std::generate(reported.begin(), reported.end(), poll);
    EXPECT_THAT(reported, ElementsAre(0, 0, 0, 5, 0, 0));
}

TEST_F(AppCommonTest, ATouchThatMovesReportsTheLastTagBeforeItsRelease) {
    const auto poll = [this] { return App_Read_Tag(&host); };
    release(poll);
    board.queueReads(regTouchTag, {5, 7, 7, 0, 0});
    std::vector<int> reported(5);
    std::generate(reported.begin(), reported.end(), poll);
    EXPECT_THAT(reported, ElementsAre(0, 0, 0, 7, 0));
}

TEST_F(AppCommonTest, TheTagIsOneByteOfItsRegister) {
    board.poke(regTouchTag, 0);
    App_Read_Tag(&host);
    EXPECT_EQ(board.transactions().back(), Transaction::read8(regTouchTag, 0));
}

TEST_F(AppCommonTest, TouchUpdateTellsTagPositionAndReleasedTag) {
    uint8_t tag = 0xEE;
    uint16_t x = 0;
    uint16_t y = 0;
    const auto poll = [&] { return App_Touch_Update(&host, &tag, &x, &y); };
    release(poll);
    board.clearRecord();

    board.poke(regTouchTag, 9);
    board.poke(regTouchScreenXY, 0x01DF010F);
    EXPECT_EQ(poll(), 0);
    EXPECT_EQ(tag, 9);
    EXPECT_EQ(x, 479);
    EXPECT_EQ(y, 271);
    EXPECT_THAT(board.transactions(),
                ElementsAre(Transaction::read8(regTouchTag, 9),
                            Transaction::read32(regTouchScreenXY, 0x01DF010F)));

    board.poke(regTouchTag, 0);
    board.poke(regTouchScreenXY, 0x80008000);
    EXPECT_EQ(poll(), 9);
    EXPECT_EQ(tag, 0);
    EXPECT_EQ(x, 0x8000);
    EXPECT_EQ(y, 0x8000);
    EXPECT_EQ(poll(), 0);
}

TEST_F(AppCommonTest, TouchUpdateAndReadTagRememberTheirTagsApart) {
    uint8_t tag = 0;
    uint16_t x = 0;
    uint16_t y = 0;
    release([&] { return App_Read_Tag(&host); });
    release([&] { return App_Touch_Update(&host, &tag, &x, &y); });

    board.poke(regTouchTag, 4);
    App_Touch_Update(&host, &tag, &x, &y);
    board.poke(regTouchTag, 0);
    EXPECT_EQ(App_Read_Tag(&host), 0);
    EXPECT_EQ(App_Touch_Update(&host, &tag, &x, &y), 4);
}

// In a process of its own, in which nothing has been polled before.
TEST_F(AppCommonTest, NothingIsReleasedAtTheFirstPoll) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto pollOnce = [this] {
        board.poke(regTouchTag, 0);
        uint8_t tag = 0;
        uint16_t x = 0;
        uint16_t y = 0;
        std::exit(App_Read_Tag(&host) + App_Touch_Update(&host, &tag, &x, &y));
    };
    EXPECT_EXIT(pollOnce(), testing::ExitedWithCode(0), "");
}

// --- sound

TEST_F(AppCommonTest, PlayingASoundSetsVolumeSoundAndNoteAndStartsIt) {
    App_Play_Sound(&host, 0x41, 200, 60);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::write8(0x302084, 200),
                                                  Transaction::write16(0x302088, 0x3C41),
                                                  Transaction::write8(0x30208C, 1)));
}

// --- before anything has used the buffers

const uint32_t cmdIndexAtStart = CmdBuffer_Index;
const uint32_t dlIndexAtStart = DlBuffer_Index;

TEST_F(AppCommonTest, BuffersAreEmptyWhenTheProgramStarts) {
    EXPECT_EQ(cmdIndexAtStart, 0U);
    EXPECT_EQ(dlIndexAtStart, 0U);
}

} // namespace
