#include "CoPro_Cmds.h"
#include "assertionfailure.h"
#include "drawingtest.h"
#include "e3addresses.h"
#include "guardline.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr uint8_t init = 0;
constexpr uint8_t detached = 1;
constexpr uint8_t basic = 2;
constexpr uint8_t full = 3;

constexpr uint32_t erase = 0xFFFFFF44;
constexpr uint32_t write = 0xFFFFFF45;
constexpr uint32_t read = 0xFFFFFF46;
constexpr uint32_t update = 0xFFFFFF47;
constexpr uint32_t detach = 0xFFFFFF48;
constexpr uint32_t attach = 0xFFFFFF49;
constexpr uint32_t fast = 0xFFFFFF4A;

class FlashTest : public DrawingTest {
protected:
    // Bytes 1, 2, 3, ...; never 0xFF.
    static std::vector<uint8_t> someData(std::size_t size) {
        std::vector<uint8_t> data(size);
        std::generate(data.begin(), data.end(),
                      [n = 0]() mutable { return static_cast<uint8_t>(1 + n++ % 250); });
        return data;
    }

    // The offset and size of every piece that was written into the command FIFO.
    static std::vector<std::pair<uint32_t, std::size_t>> piecesInFifo() {
        std::vector<std::pair<uint32_t, std::size_t>> pieces;
        for (const Transaction& each : board.transactions(Transaction::Write)) {
            if (each.address >= ramCmd && each.address < ramCmd + 4096) {
                pieces.emplace_back(each.address - ramCmd, each.data.size());
            }
        }
        return pieces;
    }

    static std::size_t statusReads() {
        return board.transactions(Transaction::Read, regFlashStatus).size();
    }

    // The buffer was flushed, which drains the FIFO, and the FIFO drained once more, at the end.
    static bool endsWithOneCompletion() {
        const Transaction& last = board.transactions().back();
        return last.kind == Transaction::Read && last.address == regCmdWrite &&
               board.transactions(Transaction::Read, regCmdWrite).size() == 2;
    }
};

TEST(FlashStatus, IsZeroWhenAllIsWell) {
    EXPECT_EQ(static_cast<int>(Flash_Cmd_Ok), 0);
    EXPECT_EQ(static_cast<int>(Flash_Cmd_Misaligned), 1);
}

// --- commands

TEST_F(FlashTest, CommandsSendTheirArgumentsInOrder) {
    Gpu_CoCmd_FlashErase(&host);
    Gpu_CoCmd_FlashAttach(&host);
    Gpu_CoCmd_FlashDetach(&host);
    Gpu_CoCmd_FlashSpiDesel(&host);
    Gpu_CoCmd_ClearCache(&host);
    Gpu_CoCmd_FlashWrite(&host, 0x100, 0x200);
    Gpu_CoCmd_FlashUpdate(&host, 1, 2, 3);
    Gpu_CoCmd_FlashRead(&host, 4, 5, 6);
    Gpu_CoCmd_FlashSource(&host, 7);
    Gpu_CoCmd_FlashSpiTx(&host, 8);
    Gpu_CoCmd_FlashSpiRx(&host, 9, 10);
    Gpu_CoCmd_FlashFast(&host, 11);
    EXPECT_THAT(flushedWords(),
                ElementsAre(0xFFFFFF44, 0xFFFFFF49, 0xFFFFFF48, 0xFFFFFF4B, 0xFFFFFF4F, 0xFFFFFF45,
                            0x100, 0x200, 0xFFFFFF47, 1, 2, 3, 0xFFFFFF46, 4, 5, 6, 0xFFFFFF4E, 7,
                            0xFFFFFF4C, 8, 0xFFFFFF4D, 9, 10, 0xFFFFFF4A, 11));
}

TEST_F(FlashTest, WriteExtSendsItsDataAsWords) {
    const std::vector<uint8_t> data = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    Gpu_CoCmd_FlashWriteExt(&host, 0x100, 8, data.data());
    EXPECT_THAT(flushedWords(), ElementsAre(0xFFFFFF45, 0x100, 8, 0x44332211, 0x88776655));
}

TEST_F(FlashTest, WriteExtOfAnOddCountSendsTheWholeLastWord) {
    const std::vector<uint8_t> data = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    Gpu_CoCmd_FlashWriteExt(&host, 0x100, 5, data.data());
    Gpu_CoCmd_FlashWriteExt(&host, 0x200, 0, data.data());
    EXPECT_THAT(flushedWords(),
                ElementsAre(0xFFFFFF45, 0x100, 5, 0x44332211, 0x88776655, 0xFFFFFF45, 0x200, 0));
}

// --- helper: state and simple operations

TEST_F(FlashTest, GetStateReadsTheStatusRegister) {
    board.poke(regFlashStatus, full);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_GetState(&host), full);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read8(regFlashStatus, full)));
}

TEST_F(FlashTest, InitOnlyAppendsAttachCommandsWhileTheFlashIsDetached) {
    board.poke(regFlashStatus, basic);
    board.queueReads(regFlashStatus, {detached, detached, detached});
    Gpu_CoCmd_FlashHelper_Init(&host);
    EXPECT_EQ(statusReads(), 4U);
    EXPECT_THAT(board.commandWords(), IsEmpty());
    EXPECT_THAT(flushedWords(), ElementsAre(attach, attach, attach));
}

TEST_F(FlashTest, InitLeavesAnAttachedFlashAlone) {
    board.poke(regFlashStatus, full);
    Gpu_CoCmd_FlashHelper_Init(&host);
    EXPECT_THAT(flushedWords(), IsEmpty());
}

TEST_F(FlashTest, InitEndsWhenAFullCommandBufferHasDeliveredTheAttachCommand) {
    board.poke(regFlashStatus, detached);
    App_Set_CmdBuffer_Index(4096 - 4); // room for one word
    std::fill(std::begin(CmdBuffer), std::end(CmdBuffer), uint8_t{0});
    board.queueReads(regFlashStatus, {detached, detached, basic});
    Gpu_CoCmd_FlashHelper_Init(&host);
    EXPECT_EQ(board.commandWords().size(), 1024U);
    EXPECT_EQ(board.commandWords().back(), attach);
    EXPECT_EQ(CmdBuffer_Index, 4U);
}

TEST_F(FlashTest, EraseAndClearCacheCompleteTheirCommand) {
    Gpu_CoCmd_FlashHelper_Erase(&host);
    EXPECT_TRUE(endsWithOneCompletion());
    EXPECT_THAT(board.commandWords(), ElementsAre(erase));
    board.clearRecord();
    Gpu_CoCmd_FlashHelper_ClearCache(&host);
    EXPECT_TRUE(endsWithOneCompletion());
    EXPECT_EQ(CmdBuffer_Index, 0U);
    EXPECT_THAT(board.transactions(Transaction::Write, ramCmd + 4),
                ElementsAre(Transaction::write32(ramCmd + 4, 0xFFFFFF4F)));
}

// --- helper: write

TEST_F(FlashTest, WriteOf512BytesSendsASingleWrite) {
    const std::vector<uint8_t> data = someData(512);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0x100, 512, data.data()), Flash_Cmd_Ok);
    const std::vector<uint8_t>& sent = board.commandBytes();
    ASSERT_EQ(sent.size(), 12U + 512U);
    const Words words = board.commandWords();
    EXPECT_THAT(Words(words.begin(), words.begin() + 3), ElementsAre(write, 0x100, 512));
    EXPECT_TRUE(std::equal(data.begin(), data.end(), sent.begin() + 12));
    EXPECT_TRUE(endsWithOneCompletion());
}

TEST_F(FlashTest, WriteOf300BytesSendsAPageThenTheTailFilledUpWithErasedBytes) {
    const std::vector<uint8_t> data = someData(300);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0x1000, 300, data.data()), Flash_Cmd_Ok);
    const Words words = board.commandWords();
    const std::vector<uint8_t>& sent = board.commandBytes();
    ASSERT_EQ(sent.size(), 2U * (12 + 256));
    EXPECT_THAT(Words(words.begin(), words.begin() + 3), ElementsAre(write, 0x1000, 256));
    EXPECT_TRUE(std::equal(data.begin(), data.begin() + 256, sent.begin() + 12));
    EXPECT_THAT(Words(words.begin() + 67, words.begin() + 70), ElementsAre(write, 0x1100, 256));
    EXPECT_TRUE(std::equal(data.begin() + 256, data.end(), sent.begin() + 280));
    EXPECT_THAT(std::vector<uint8_t>(sent.begin() + 280 + 44, sent.end()),
                AllOf(testing::SizeIs(212), Each(0xFF)));
    // Each is completed before the next.
    EXPECT_THAT(piecesInFifo(), ElementsAre(std::pair(0U, 268U), std::pair(268U, 268U)));
}

TEST_F(FlashTest, WriteOfLessThanAPageSendsOneFilledUpPage) {
    const std::vector<uint8_t> data = someData(1);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0, 1, data.data()), Flash_Cmd_Ok);
    const Words words = board.commandWords();
    ASSERT_EQ(words.size(), 67U);
    EXPECT_THAT(Words(words.begin(), words.begin() + 4), ElementsAre(write, 0, 256, 0xFFFFFF01));
    EXPECT_THAT(Words(words.begin() + 4, words.end()), Each(0xFFFFFFFF));
}

TEST_F(FlashTest, WriteOfNothingSendsAnEmptyWrite) {
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0x200, 0, nullptr), Flash_Cmd_Ok);
    EXPECT_THAT(board.commandWords(), ElementsAre(write, 0x200, 0));
}

TEST_F(FlashTest, WriteLargerThanTheCommandBufferArrivesWhole) {
    const std::vector<uint8_t> data = someData(8192);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0, 8192, data.data()), Flash_Cmd_Ok);
    const std::vector<uint8_t>& sent = board.commandBytes();
    ASSERT_EQ(sent.size(), 12U + 8192U);
    EXPECT_TRUE(std::equal(data.begin(), data.end(), sent.begin() + 12));
}

TEST_F(FlashTest, WriteToAMisalignedAddressSendsNothing) {
    const std::vector<uint8_t> data = someData(256);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0x180, 256, data.data()), Flash_Cmd_Misaligned);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 1, 256, data.data()), 1U);
    EXPECT_TRUE(board.events().empty());
    EXPECT_EQ(CmdBuffer_Index, 0U);
}

// --- helper: update

TEST_F(FlashTest, UpdateOf100BytesUpdatesASector) {
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, 0x2000, 0x104, 100), Flash_Cmd_Ok);
    EXPECT_THAT(board.commandWords(), ElementsAre(update, 0x2000, 0x104, 4096));
    EXPECT_TRUE(endsWithOneCompletion());
}

TEST_F(FlashTest, UpdateOfNothingUpdatesASector) {
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, 0, 0, 0), Flash_Cmd_Ok);
    EXPECT_THAT(board.commandWords(), ElementsAre(update, 0, 0, 4096));
}

TEST_F(FlashTest, UpdateOfWholeSectorsIsOneCommand) {
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, 0x2000, 8, 8192), Flash_Cmd_Ok);
    EXPECT_THAT(board.commandWords(), ElementsAre(update, 0x2000, 8, 8192));
}

TEST_F(FlashTest, UpdateOf5000BytesUpdatesASectorAndThenAnother) {
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, 0x2000, 8, 5000), Flash_Cmd_Ok);
    EXPECT_THAT(board.commandWords(),
                ElementsAre(update, 0x2000, 8, 4096, update, 0x3000, 0x1008, 4096));
    EXPECT_THAT(piecesInFifo(), ElementsAre(std::pair(0U, 16U), std::pair(16U, 16U)));
}

TEST_F(FlashTest, UpdateFromOrToAMisalignedAddressSendsNothing) {
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, 0x1000, 2, 100), Flash_Cmd_Misaligned);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, 0x1100, 4, 100), Flash_Cmd_Misaligned);
    EXPECT_TRUE(board.events().empty());
    EXPECT_EQ(CmdBuffer_Index, 0U);
}

// --- helper: read

TEST_F(FlashTest, ReadOf10BytesReads8) {
    board.poke(0x204, 0x44332211);
    board.poke(0x208, 0x88776655);
    board.poke(0x20C, 0xCCBBAA99);
    std::vector<uint8_t> out(10, 0xEE);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Read(&host, 0x204, 0x40, 10, out.data()), Flash_Cmd_Ok);
    EXPECT_THAT(board.commandWords(), ElementsAre(read, 0x204, 0x40, 8));
    EXPECT_THAT(out, ElementsAre(0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0xEE, 0xEE));
    // The memory is read after the command has completed.
    EXPECT_EQ(board.transactions().back(),
              Transaction::read(0x204, {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88}));
}

TEST_F(FlashTest, ReadFromOrToAMisalignedAddressSendsNothing) {
    std::vector<uint8_t> out(4);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Read(&host, 0x202, 0x40, 4, out.data()), Flash_Cmd_Misaligned);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Read(&host, 0x204, 0x20, 4, out.data()), Flash_Cmd_Misaligned);
    EXPECT_TRUE(board.events().empty());
    EXPECT_EQ(CmdBuffer_Index, 0U);
}

// --- helper: states

TEST_F(FlashTest, SwitchingToTheCurrentStateSendsNothing) {
    for (const uint8_t state : {init, detached, basic, full}) {
        board.poke(regFlashStatus, state);
        EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, state), 0U);
    }
    EXPECT_EQ(statusReads(), 4U);
    EXPECT_EQ(board.transactions().size(), 4U);
    EXPECT_THAT(flushedWords(), IsEmpty());
}

TEST_F(FlashTest, SwitchingToAnUnknownStateSendsNothingAndTellsSo) {
    board.poke(regFlashStatus, basic);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, 4), 0xFFFFU);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, init), 0xFFFFU);
    EXPECT_THAT(flushedWords(), IsEmpty());
}

TEST_F(FlashTest, SwitchingToDetachedDetachesWithoutWaiting) {
    board.poke(regFlashStatus, full);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, detached), 0U);
    EXPECT_THAT(board.commandWords(), ElementsAre(detach));
    EXPECT_EQ(board.transactions().back(), Transaction::write16(regCmdWrite, 4));
    EXPECT_EQ(statusReads(), 1U);
}

TEST_F(FlashTest, SwitchingFromDetachedToBasicAttaches) {
    board.poke(regFlashStatus, detached);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, basic), 0U);
    EXPECT_THAT(board.commandWords(), ElementsAre(attach));
    EXPECT_EQ(statusReads(), 1U);
}

TEST_F(FlashTest, SwitchingFromFullToBasicDetachesUntilItIsDetachedAndThenAttaches) {
    board.queueReads(regFlashStatus, {full, full, full, detached});
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, basic), 0U);
    EXPECT_THAT(board.commandWords(), ElementsAre(detach, detach, detach, attach));
    EXPECT_EQ(board.transactions(Transaction::Write, regCmdWrite).size(), 4U) << "one at a time";
    EXPECT_EQ(statusReads(), 4U);
}

TEST_F(FlashTest, SwitchingFromBasicToFullReturnsTheFastModeResultWord) {
    board.poke(regFlashStatus, basic);
    board.queueReads(ramCmd + 4, {0xE001});
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, full), 0xE001U);
    EXPECT_THAT(board.commandWords(), ElementsAre(fast, 0));
    // Nothing is waited for between the command and the look at its result.
    const auto& all = board.transactions();
    ASSERT_GE(all.size(), 2U);
    EXPECT_EQ(all[all.size() - 2], Transaction::write16(regCmdWrite, 8));
}

TEST_F(FlashTest, TheFastModeResultWordMayBeTheLastOfTheRing) {
    board.poke(regFlashStatus, basic);
    host.cmd_write_offset = 4088;
    board.poke(regCmdRead, 4088);
    board.queueReads(ramCmd + 4092, {0xE002});
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, full), 0xE002U);
    EXPECT_EQ(host.cmd_write_offset, 0);
}

TEST_F(FlashTest, SwitchingFromDetachedToFullAttachesUntilItIsBasicFirst) {
    board.queueReads(regFlashStatus, {detached, detached, basic});
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, full), 0U);
    EXPECT_THAT(board.commandWords(), ElementsAre(attach, attach, fast, 0));
    EXPECT_EQ(statusReads(), 3U);
}

TEST_F(FlashTest, SwitchFullModeGoesThroughAllStates) {
    board.queueReads(regFlashStatus, {detached, basic, full});
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchFullMode(&host), 1U);
    EXPECT_THAT(board.commandWords(), ElementsAre(detach, attach, fast, 0));
    EXPECT_THAT(piecesInFifo(),
                ElementsAre(std::pair(0U, 4U), std::pair(4U, 4U), std::pair(8U, 8U)));
}

TEST_F(FlashTest, SwitchFullModeStopsAtTheStepThatFails) {
    board.queueReads(regFlashStatus, {basic});
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchFullMode(&host), 0U);
    EXPECT_THAT(board.commandWords(), ElementsAre(detach));

    board.queueReads(regFlashStatus, {detached, detached});
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchFullMode(&host), 0U);
    EXPECT_THAT(board.commandWords(), ElementsAre(detach, detach, attach));

    board.queueReads(regFlashStatus, {detached, basic, basic});
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchFullMode(&host), 0U);
    EXPECT_THAT(board.commandWords(), ElementsAre(detach, detach, attach, detach, attach, fast, 0));
}

// --- guards

struct Guarded {
    const char* signature;
    void (*call)(Gpu_Hal_Context_t*);
};

const Guarded guarded[] = {
    {"void Gpu_CoCmd_FlashErase(Gpu_Hal_Context_t*)", Gpu_CoCmd_FlashErase},
    {"void Gpu_CoCmd_FlashAttach(Gpu_Hal_Context_t*)", Gpu_CoCmd_FlashAttach},
    {"void Gpu_CoCmd_FlashDetach(Gpu_Hal_Context_t*)", Gpu_CoCmd_FlashDetach},
    {"void Gpu_CoCmd_FlashSpiDesel(Gpu_Hal_Context_t*)", Gpu_CoCmd_FlashSpiDesel},
    {"void Gpu_CoCmd_ClearCache(Gpu_Hal_Context_t*)", Gpu_CoCmd_ClearCache},
    {"void Gpu_CoCmd_FlashWrite(Gpu_Hal_Context_t*, uint32_t, uint32_t)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashWrite(h, 0, 0); }},
    {"void Gpu_CoCmd_FlashWriteExt(Gpu_Hal_Context_t*, uint32_t, uint32_t, const uint8_t*)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashWriteExt(h, 0, 0, nullptr); }},
    {"void Gpu_CoCmd_FlashUpdate(Gpu_Hal_Context_t*, uint32_t, uint32_t, uint32_t)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashUpdate(h, 0, 0, 0); }},
    {"void Gpu_CoCmd_FlashRead(Gpu_Hal_Context_t*, uint32_t, uint32_t, uint32_t)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashRead(h, 0, 0, 0); }},
    {"void Gpu_CoCmd_FlashSource(Gpu_Hal_Context_t*, uint32_t)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashSource(h, 0); }},
    {"void Gpu_CoCmd_FlashSpiTx(Gpu_Hal_Context_t*, uint32_t)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashSpiTx(h, 0); }},
    {"void Gpu_CoCmd_FlashSpiRx(Gpu_Hal_Context_t*, uint32_t, uint32_t)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashSpiRx(h, 0, 0); }},
    {"void Gpu_CoCmd_FlashFast(Gpu_Hal_Context_t*, uint32_t)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashFast(h, 0); }},
    {"uint8_t Gpu_CoCmd_FlashHelper_GetState(Gpu_Hal_Context_t*)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashHelper_GetState(h); }},
    {"void Gpu_CoCmd_FlashHelper_Init(Gpu_Hal_Context_t*)", Gpu_CoCmd_FlashHelper_Init},
    {"void Gpu_CoCmd_FlashHelper_Erase(Gpu_Hal_Context_t*)", Gpu_CoCmd_FlashHelper_Erase},
    {"void Gpu_CoCmd_FlashHelper_ClearCache(Gpu_Hal_Context_t*)", Gpu_CoCmd_FlashHelper_ClearCache},
    {"Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Write(Gpu_Hal_Context_t*, uint32_t, uint32_t, "
     "const uint8_t*)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashHelper_Write(h, 1, 0, nullptr); }},
    {"Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Update(Gpu_Hal_Context_t*, uint32_t, uint32_t, "
     "uint32_t)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashHelper_Update(h, 1, 0, 0); }},
    {"Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Read(Gpu_Hal_Context_t*, uint32_t, uint32_t, "
     "uint32_t, uint8_t*)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashHelper_Read(h, 1, 0, 0, nullptr); }},
    {"uint32_t Gpu_CoCmd_FlashHelper_SwitchState(Gpu_Hal_Context_t*, uint8_t)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashHelper_SwitchState(h, detached); }},
    {"uint32_t Gpu_CoCmd_FlashHelper_SwitchFullMode(Gpu_Hal_Context_t*)",
     [](Gpu_Hal_Context_t* h) { Gpu_CoCmd_FlashHelper_SwitchFullMode(h); }},
};

using FlashDeathTest = FlashTest;

TEST_F(FlashDeathTest, EveryFunctionAbortsBeforeEve3BeforeAnythingIsSent) {
    for (const auto generation : {DisplaySettings::EVE_1, DisplaySettings::EVE_2}) {
        use(generation);
        for (const Guarded& each : guarded) {
            SCOPED_TRACE(each.signature);
            EXPECT_EXIT(abortUntouched([&each] {
                            Gpu_Hal_Context_t context;
                            each.call(&context);
                        }),
                        ExitedWithCode(failedUntouched),
                        AllOf(NamesALineWithAGuard(),
                              HasSubstr(": " + signatureAsCompiled(each.signature) +
                                        ": Assertion `EVE3 && \"This function worked only on EVE3 "
                                        "device\"' failed.\n")));
        }
    }
}

} // namespace
