#include "Gpu_Hal.h"
#include "assertionfailure.h"
#include "displaysettings.h"
#include "e3addresses.h"
#include "recordingboard.h"

#include <gmock/gmock.h>

#include <array>
#include <cstring>
#include <numeric>
#include <type_traits>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Callers write plain numbers.
static_assert(std::is_same_v<decltype(Gpu_Hal_Context_t::cmd_write_offset), uint16_t>);
static_assert(std::is_same_v<decltype(Gpu_Hal_Context_t::dl_write_index), uint16_t>);
static_assert(std::is_same_v<decltype(Gpu_Hal_Context_t::transfer_state), uint32_t>);
static_assert(std::is_same_v<decltype(Gpu_Hal_Context_t::spi_lanes), uint8_t>);
static_assert(std::is_same_v<decltype(Gpu_Hal_Context_t::spi_dummy_count), uint8_t>);
static_assert(
    std::is_same_v<decltype(Gpu_Hal_SetSPI), int(Gpu_Hal_Context_t*, uint32_t, uint32_t)>);
static_assert(std::is_same_v<decltype(Fifo_Write),
                             uint32_t(Gpu_Hal_Context_t*, Fifo_t*, uint8_t*, uint32_t)>);

std::vector<uint8_t> countingBytes(std::size_t size) {
    std::vector<uint8_t> bytes(size);
    std::iota(bytes.begin(), bytes.end(), uint8_t{1});
    return bytes;
}

std::vector<uint8_t> slice(const std::vector<uint8_t>& bytes, std::size_t from, std::size_t to) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

class GpuHal : public testing::Test {
protected:
    GpuHal() {
        board.reset();
        setGeneration(DisplaySettings::EVE_3);
    }

    static void setGeneration(DisplaySettings::DisplayGeneration generation) {
        DisplaySettings::getInstance()->setDisplayGeneration(generation);
    }

    Gpu_Hal_Context_t host;
};

// ---- What callers are promised ----

TEST(GpuHalNames, StandForTheseNumbers) {
    using Numbers = std::vector<uint32_t>;
    EXPECT_EQ((Numbers{GPU_READ, GPU_WRITE}), (Numbers{0, 1}));
    EXPECT_EQ((Numbers{GPU_TRANSFER_IDLE, GPU_TRANSFER_READING, GPU_TRANSFER_WRITING,
                       GPU_TRANSFER_CLOSED}),
              (Numbers{0, 1, 2, 3}));
    EXPECT_EQ((Numbers{GPU_CLOCK_EXTERNAL, GPU_CLOCK_INTERNAL}), (Numbers{0x44, 0x48}));
    EXPECT_EQ((Numbers{GPU_PLL_36MHZ, GPU_PLL_48MHZ}), (Numbers{0x61, 0x62}));
    EXPECT_EQ((Numbers{GPU_POWER_ACTIVE, GPU_POWER_STANDBY, GPU_POWER_SLEEP, GPU_POWER_DOWN}),
              (Numbers{0x00, 0x41, 0x42, 0x50}));
    EXPECT_EQ((Numbers{GPU_81X_PLL_DEFAULT, GPU_81X_PLL_24MHZ, GPU_81X_PLL_36MHZ, GPU_81X_PLL_48MHZ,
                       GPU_81X_PLL_60MHZ, GPU_81X_PLL_72MHZ}),
              (Numbers{0, 2, 3, 4, 5, 6}));
    EXPECT_EQ((Numbers{GPU_SPI_SINGLE_CHANNEL, GPU_SPI_DUAL_CHANNEL, GPU_SPI_QUAD_CHANNEL}),
              (Numbers{0, 1, 2}));
    EXPECT_EQ((Numbers{GPU_SPI_ONE_DUMMY, GPU_SPI_TWO_DUMMY}), (Numbers{1, 2}));
}

TEST(GpuHalNames, ANewContextIsIdleAtTheStartOfEverything) {
    const Gpu_Hal_Context_t fresh;
    EXPECT_EQ(fresh.cmd_write_offset, 0);
    EXPECT_EQ(fresh.dl_write_index, 0);
    EXPECT_EQ(fresh.transfer_state, 0U);
    EXPECT_EQ(fresh.spi_lanes, 0);
    EXPECT_EQ(fresh.spi_dummy_count, 1);
}

// ---- Lifecycle ----

using GpuHalLifecycle = GpuHal;

TEST_F(GpuHalLifecycle, InitBuildsTheBoard) {
    Gpu_Hal_Init();
    EXPECT_THAT(board.events(), ElementsAre("init"));
}

TEST_F(GpuHalLifecycle, DeInitDoesNothing) {
    Gpu_Hal_DeInit();
    EXPECT_THAT(board.events(), IsEmpty());
}

TEST_F(GpuHalLifecycle, OpenRaisesTheLinesBeforeItOpensTheDevice) {
    Gpu_Hal_Open(&host);
    EXPECT_THAT(board.events(), ElementsAre("PD high", "CS high", "open"));
}

TEST_F(GpuHalLifecycle, OpenResetsTheContext) {
    host.cmd_write_offset = 100;
    host.dl_write_index = 200;
    host.transfer_state = 3;
    host.spi_lanes = 2;
    host.spi_dummy_count = 2;
    Gpu_Hal_Open(&host);
    EXPECT_EQ(host.cmd_write_offset, 0);
    EXPECT_EQ(host.dl_write_index, 0);
    EXPECT_EQ(host.transfer_state, 0U);
    EXPECT_EQ(host.spi_dummy_count, 1);
    EXPECT_EQ(host.spi_lanes, 2);
}

TEST_F(GpuHalLifecycle, CloseClosesTheDevice) {
    Gpu_Hal_Close(&host);
    EXPECT_THAT(board.events(), ElementsAre("close"));
    EXPECT_EQ(host.transfer_state, 3U);
}

TEST_F(GpuHalLifecycle, ResetDLBufferForgetsTheIndex) {
    host.dl_write_index = 12;
    Gpu_Hal_ResetDLBuffer(&host);
    EXPECT_EQ(host.dl_write_index, 0);
}

// ---- Transfers ----

using GpuHalTransfers = GpuHal;

TEST_F(GpuHalTransfers, WriteHeaderIsThreeBytesInOneMessage) {
    Gpu_Hal_StartTransfer(&host, GPU_WRITE, 0x302000);
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send B0 20 00"));
    EXPECT_EQ(host.transfer_state, 2U);
}

TEST_F(GpuHalTransfers, WriteHeaderCutsTheAddressTo22Bits) {
    Gpu_Hal_StartTransfer(&host, GPU_WRITE, 0xFFC12345);
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send 81 23 45"));
}

TEST_F(GpuHalTransfers, ReadHeaderIsFourBytesInOneMessage) {
    Gpu_Hal_StartTransfer(&host, GPU_READ, 0xC0000);
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send 0C 00 00 00"));
    EXPECT_EQ(host.transfer_state, 1U);
}

TEST_F(GpuHalTransfers, ReadHeaderDoesNotMaskTheAddress) {
    Gpu_Hal_StartTransfer(&host, GPU_READ, 0x12F0ABCD);
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send F0 AB CD 00"));
}

TEST_F(GpuHalTransfers, ReadHeaderHasOneDummyByteWhateverTheContextSays) {
    host.spi_dummy_count = 2;
    Gpu_Hal_StartTransfer(&host, GPU_READ, 0x302000);
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send 30 20 00 00"));
}

TEST_F(GpuHalTransfers, CommandTransferStartsAtTheWriteOffset) {
    host.cmd_write_offset = 0x010;
    Gpu_Hal_StartCmdTransfer(&host, GPU_WRITE);
    Gpu_Hal_EndTransfer(&host);
    Gpu_Hal_StartCmdTransfer(&host, GPU_READ);
    EXPECT_THAT(board.events(),
                ElementsAre("CS low", "send B0 80 10", "CS high", "CS low", "send 30 80 10 00"));
}

TEST_F(GpuHalTransfers, AStartWithinATransferJustSendsAnotherHeader) {
    Gpu_Hal_StartTransfer(&host, GPU_WRITE, 0x302000);
    Gpu_Hal_StartTransfer(&host, GPU_READ, 0x302000);
    EXPECT_THAT(board.events(),
                ElementsAre("CS low", "send B0 20 00", "CS low", "send 30 20 00 00"));
    EXPECT_EQ(host.transfer_state, 1U);
}

TEST_F(GpuHalTransfers, EndDeselectsTheController) {
    host.transfer_state = 2;
    Gpu_Hal_EndTransfer(&host);
    EXPECT_THAT(board.events(), ElementsAre("CS high"));
    EXPECT_EQ(host.transfer_state, 0U);
}

TEST_F(GpuHalTransfers, Transfer8ExchangesOneByte) {
    board.poke(0x1000, 0x5A);
    Gpu_Hal_StartTransfer(&host, GPU_READ, 0x1000);
    board.clearRecord();
    EXPECT_EQ(Gpu_Hal_Transfer8(0xA5), 0x5A);
    EXPECT_THAT(board.events(), ElementsAre("exchange A5 -> 5A"));
}

TEST_F(GpuHalTransfers, Transfer32SendsWhileWriting) {
    Gpu_Hal_StartTransfer(&host, GPU_WRITE, 0x1000);
    board.clearRecord();
    EXPECT_EQ(Gpu_Hal_Transfer32(&host, 0x12345678), 0U);
    EXPECT_THAT(board.events(), ElementsAre("exchange 78 -> 00", "exchange 56 -> 00",
                                            "exchange 34 -> 00", "exchange 12 -> 00"));
}

TEST_F(GpuHalTransfers, Transfer32SendsZerosWhileNotWriting) {
    board.poke(0x1000, 0x12345678);
    Gpu_Hal_StartTransfer(&host, GPU_READ, 0x1000);
    board.clearRecord();
    EXPECT_EQ(Gpu_Hal_Transfer32(&host, 0xFFFFFFFF), 0x12345678U);
    EXPECT_THAT(board.events(), ElementsAre("exchange 00 -> 78", "exchange 00 -> 56",
                                            "exchange 00 -> 34", "exchange 00 -> 12"));
}

TEST_F(GpuHalTransfers, TransferStringSendsTheTerminatorToo) {
    Gpu_Hal_StartTransfer(&host, GPU_WRITE, 0x1000);
    EXPECT_EQ(Gpu_Hal_TransferString("Hi"), 0);
    Gpu_Hal_EndTransfer(&host);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::write(0x1000, {'H', 'i', 0})));
}

TEST_F(GpuHalTransfers, TransferStringReturnsWhatCameWithTheTerminator) {
    board.poke(0x1000, 0x00332211);
    Gpu_Hal_StartTransfer(&host, GPU_READ, 0x1000);
    EXPECT_EQ(Gpu_Hal_TransferString("\xE4!"), 0x33);
}

TEST_F(GpuHalTransfers, Rd8ReadsOneByte) {
    board.poke(0x302000, 0x7C);
    EXPECT_EQ(Gpu_Hal_Rd8(&host, 0x302000), 0x7C);
    EXPECT_THAT(board.events(),
                ElementsAre("CS low", "send 30 20 00 00", "exchange 00 -> 7C", "CS high"));
    EXPECT_EQ(host.transfer_state, 0U);
}

TEST_F(GpuHalTransfers, Rd16ReadsTheLowByteFirst) {
    board.poke(0x302000, 0x1234);
    EXPECT_EQ(Gpu_Hal_Rd16(&host, 0x302000), 0x1234);
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send 30 20 00 00", "exchange 00 -> 34",
                                            "exchange 00 -> 12", "CS high"));
}

TEST_F(GpuHalTransfers, Rd32ReadsTheLowByteFirst) {
    board.poke(0xC0000, 0xFEDCBA98);
    EXPECT_EQ(Gpu_Hal_Rd32(&host, 0xC0000), 0xFEDCBA98U);
    EXPECT_THAT(board.events(),
                ElementsAre("CS low", "send 0C 00 00 00", "exchange 00 -> 98", "exchange 00 -> BA",
                            "exchange 00 -> DC", "exchange 00 -> FE", "CS high"));
}

TEST_F(GpuHalTransfers, Wr8WritesOneByte) {
    Gpu_Hal_Wr8(&host, 0x302054, 0x02);
    EXPECT_THAT(board.events(),
                ElementsAre("CS low", "send B0 20 54", "exchange 02 -> 00", "CS high"));
    EXPECT_EQ(host.transfer_state, 0U);
}

TEST_F(GpuHalTransfers, Wr16WritesTheLowByteFirst) {
    Gpu_Hal_Wr16(&host, 0x30202C, 0x0224);
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send B0 20 2C", "exchange 24 -> 00",
                                            "exchange 02 -> 00", "CS high"));
}

TEST_F(GpuHalTransfers, Wr32WritesTheLowByteFirst) {
    Gpu_Hal_Wr32(&host, 0x302150, 0x89ABCDEF);
    EXPECT_THAT(board.events(),
                ElementsAre("CS low", "send B0 21 50", "exchange EF -> 00", "exchange CD -> 00",
                            "exchange AB -> 00", "exchange 89 -> 00", "CS high"));
}

TEST_F(GpuHalTransfers, WrMemWritesByteByByteInOneTransfer) {
    const std::array<uint8_t, 3> bytes = {1, 2, 3};
    Gpu_Hal_WrMem(&host, 0x300000, bytes.data(), bytes.size());
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send B0 00 00", "exchange 01 -> 00",
                                            "exchange 02 -> 00", "exchange 03 -> 00", "CS high"));
}

TEST_F(GpuHalTransfers, RdMemReadsByteByByteInOneTransfer) {
    board.poke(0x2000, 0x00CCBBAA);
    std::array<uint8_t, 3> bytes{};
    Gpu_Hal_RdMem(&host, 0x2000, bytes.data(), bytes.size());
    EXPECT_THAT(bytes, ElementsAre(0xAA, 0xBB, 0xCC));
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send 00 20 00 00", "exchange 00 -> AA",
                                            "exchange 00 -> BB", "exchange 00 -> CC", "CS high"));
}

TEST_F(GpuHalTransfers, BlocksOfNoBytesStillOpenAndCloseATransfer) {
    Gpu_Hal_WrMem(&host, 0x300000, nullptr, 0);
    Gpu_Hal_RdMem(&host, 0x300000, nullptr, 0);
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send B0 00 00", "CS high", "CS low",
                                            "send 30 00 00 00", "CS high"));
}

TEST_F(GpuHalTransfers, AFailedTransferReadsAsZero) {
    EXPECT_EQ(Gpu_Hal_Rd32(&host, 0x302000), 0U);
}

TEST_F(GpuHalTransfers, SleepSleeps) {
    Gpu_Hal_Sleep(0);
    Gpu_Hal_Sleep(1000);
    EXPECT_THAT(board.events(), ElementsAre("sleep 0", "sleep 1000"));
}

// ---- Host commands ----

using GpuHalHostCommands = GpuHal;

TEST_F(GpuHalHostCommands, AreThreeBytesInOneMessage) {
    Gpu_HostCommand(0x44);
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send 44 00 00", "CS high"));
}

TEST_F(GpuHalHostCommands, TakeParametersInTheUpperBytes) {
    Gpu_HostCommand_Ext3(0xFF332211);
    EXPECT_THAT(board.events(), ElementsAre("CS low", "send 11 22 33", "CS high"));
}

TEST_F(GpuHalHostCommands, LeaveTheTransferStateAlone) {
    host.transfer_state = 3;
    Gpu_HostCommand(0x00);
    EXPECT_EQ(host.transfer_state, 3U);
}

TEST_F(GpuHalHostCommands, SelectClockAndPower) {
    Gpu_ClockSelect(GPU_CLOCK_EXTERNAL);
    Gpu_ClockSelect(GPU_CLOCK_INTERNAL);
    Gpu_PLL_FreqSelect(GPU_PLL_48MHZ);
    Gpu_PLL_FreqSelect(GPU_PLL_36MHZ);
    Gpu_PowerModeSwitch(GPU_POWER_ACTIVE);
    Gpu_PowerModeSwitch(GPU_POWER_STANDBY);
    Gpu_PowerModeSwitch(GPU_POWER_SLEEP);
    Gpu_PowerModeSwitch(GPU_POWER_DOWN);
    Gpu_CoreReset();
    EXPECT_THAT(board.transactions(),
                ElementsAre(Transaction::hostCommand(0x44), Transaction::hostCommand(0x48),
                            Transaction::hostCommand(0x62), Transaction::hostCommand(0x61),
                            Transaction::hostCommand(0x00), Transaction::hostCommand(0x41),
                            Transaction::hostCommand(0x42), Transaction::hostCommand(0x50),
                            Transaction::hostCommand(0x68)));
}

TEST_F(GpuHalHostCommands, SendTheLowByteOfTheEnumeration) {
    Gpu_ClockSelect(0x12344);
    Gpu_PLL_FreqSelect(0x12362);
    Gpu_PowerModeSwitch(0x12341);
    EXPECT_THAT(board.transactions(),
                ElementsAre(Transaction::hostCommand(0x44), Transaction::hostCommand(0x62),
                            Transaction::hostCommand(0x41)));
}

TEST_F(GpuHalHostCommands, SelectTheSystemClock) {
    for (const uint32_t frequency : {6U, 5U, 4U, 3U, 2U, 0U}) {
        Gpu_81X_SelectSysCLK(frequency);
    }
    EXPECT_THAT(
        board.transactions(),
        ElementsAre(Transaction::hostCommand(0x61, 0x46), Transaction::hostCommand(0x61, 0x45),
                    Transaction::hostCommand(0x61, 0x44), Transaction::hostCommand(0x61, 0x03),
                    Transaction::hostCommand(0x61, 0x02), Transaction::hostCommand(0x61, 0x00)));
}

TEST_F(GpuHalHostCommands, SendNothingForAnUnknownSystemClock) {
    Gpu_81X_SelectSysCLK(1);
    Gpu_81X_SelectSysCLK(7);
    EXPECT_THAT(board.events(), IsEmpty());
}

TEST_F(GpuHalHostCommands, PutTheMaskOfPartsInTheSecondByte) {
    Gpu_81X_PowerOffComponents(&host, 0xA5);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::hostCommand(0x49, 0xA5)));
}

TEST_F(GpuHalHostCommands, OrDriveStrengthAndGroupIntoTheSameByte) {
    Gpu_81X_PadDriveStrength(&host, 3, 4);
    Gpu_81X_PadDriveStrength(&host, 1, 1);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::hostCommand(0x70, 0x07),
                                                  Transaction::hostCommand(0x70, 0x01)));
}

TEST_F(GpuHalHostCommands, HoldAndReleaseReset) {
    setGeneration(DisplaySettings::EVE_2);
    Gpu_81X_ResetActive();
    Gpu_81X_ResetRemoval();
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::hostCommand(0x68, 0x02),
                                                  Transaction::hostCommand(0x68, 0x20)));
}

using GpuHalDeathTest = GpuHal;

TEST_F(GpuHalDeathTest, LaterHostCommandsFailUnderGenerationOne) {
    setGeneration(DisplaySettings::EVE_1);
    const char* const file = "eve_layer/Gpu_Hal.cpp";
    const char* const text = "!EVE1 && \"this function is worked only on EVE2 or EVE3\"";
    EXPECT_ASSERTION_FAILURE(Gpu_81X_SelectSysCLK(GPU_81X_PLL_DEFAULT), file, 510,
                             "void Gpu_81X_SelectSysCLK(GPU_81X_PLL_FREQ_T)", text);
    EXPECT_ASSERTION_FAILURE(Gpu_81X_PowerOffComponents(&host, 0), file, 538,
                             "void Gpu_81X_PowerOffComponents(Gpu_Hal_Context_t*, uint8_t)", text);
    EXPECT_ASSERTION_FAILURE(
        Gpu_81X_PadDriveStrength(&host, 0, 0), file, 553,
        "void Gpu_81X_PadDriveStrength(Gpu_Hal_Context_t*, GPU_81X_GPIO_DRIVE_STRENGTH_T, "
        "GPU_81X_GPIO_GROUP_T)",
        text);
    EXPECT_ASSERTION_FAILURE(Gpu_81X_ResetActive(), file, 566, "void Gpu_81X_ResetActive()", text);
    EXPECT_ASSERTION_FAILURE(Gpu_81X_ResetRemoval(), file, 579, "void Gpu_81X_ResetRemoval()",
                             text);
}

TEST_F(GpuHalDeathTest, AnUnknownSystemClockFailsUnderGenerationOneToo) {
    setGeneration(DisplaySettings::EVE_1);
    EXPECT_ASSERTION_FAILURE(Gpu_81X_SelectSysCLK(1), "eve_layer/Gpu_Hal.cpp", 510,
                             "void Gpu_81X_SelectSysCLK(GPU_81X_PLL_FREQ_T)",
                             "!EVE1 && \"this function is worked only on EVE2 or EVE3\"");
}

// ---- Power and SPI width ----

using GpuHalPower = GpuHal;

TEST_F(GpuHalPower, CyclesUp) {
    Gpu_Hal_Powercycle(true);
    EXPECT_THAT(board.events(), ElementsAre("PD low", "sleep 20", "PD high", "sleep 20"));
}

TEST_F(GpuHalPower, CyclesDown) {
    Gpu_Hal_Powercycle(false);
    EXPECT_THAT(board.events(), ElementsAre("PD high", "sleep 20", "PD low", "sleep 20"));
}

using GpuHalSpiWidth = GpuHal;

TEST_F(GpuHalSpiWidth, IsWrittenAndNoted) {
    EXPECT_EQ(Gpu_Hal_SetSPI(&host, GPU_SPI_QUAD_CHANNEL, GPU_SPI_TWO_DUMMY), 0);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::write8(regSpiWidth, 6)));
    EXPECT_EQ(host.spi_lanes, 2);
    EXPECT_EQ(host.spi_dummy_count, 2);
}

TEST_F(GpuHalSpiWidth, OfOneDummyByteIsTheNumberOfTheChannels) {
    EXPECT_EQ(Gpu_Hal_SetSPI(&host, GPU_SPI_SINGLE_CHANNEL, GPU_SPI_ONE_DUMMY), 0);
    EXPECT_EQ(Gpu_Hal_SetSPI(&host, GPU_SPI_DUAL_CHANNEL, GPU_SPI_ONE_DUMMY), 0);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::write8(regSpiWidth, 0),
                                                  Transaction::write8(regSpiWidth, 1)));
    EXPECT_EQ(host.spi_lanes, 1);
    EXPECT_EQ(host.spi_dummy_count, 1);
}

TEST_F(GpuHalSpiWidth, RefusesWhatTheControllerLacks) {
    EXPECT_EQ(Gpu_Hal_SetSPI(&host, 0, 3), -1);
    EXPECT_EQ(Gpu_Hal_SetSPI(&host, 0, 0), -1);
    EXPECT_EQ(Gpu_Hal_SetSPI(&host, 3, 1), -1);
    EXPECT_THAT(board.events(), IsEmpty());
    EXPECT_EQ(host.spi_lanes, 0);
    EXPECT_EQ(host.spi_dummy_count, 1);
}

TEST_F(GpuHalSpiWidth, IsLeftAloneUnderGenerationOne) {
    setGeneration(DisplaySettings::EVE_1);
    EXPECT_EQ(Gpu_Hal_SetSPI(&host, GPU_SPI_QUAD_CHANNEL, 9), 0);
    EXPECT_THAT(board.events(), IsEmpty());
    EXPECT_EQ(host.spi_lanes, 0);
}

// ---- Command FIFO ----

using GpuHalCommandFifo = GpuHal;

TEST_F(GpuHalCommandFifo, PublishesTheWriteOffset) {
    Gpu_Hal_Updatecmdfifo(&host, 8);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::write16(regCmdWrite, 8)));
    EXPECT_EQ(host.cmd_write_offset, 8);
}

TEST_F(GpuHalCommandFifo, UsesTheAddressesOfTheGeneration) {
    setGeneration(DisplaySettings::EVE_1);
    Gpu_Hal_WrCmd32(&host, 0xFFFFFF00);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read16(0x1024E4, 0),
                                                  Transaction::write32(0x108000, 0xFFFFFF00),
                                                  Transaction::write16(0x1024E8, 4)));
}

TEST_F(GpuHalCommandFifo, AdvancesByWholeWordsAndWraps) {
    const auto advanced = [this](uint16_t from, uint32_t count) {
        host.cmd_write_offset = from;
        Gpu_Hal_Updatecmdfifo(&host, count);
        return host.cmd_write_offset;
    };
    EXPECT_EQ(advanced(0, 0), 0);
    EXPECT_EQ(advanced(0, 1), 4);
    EXPECT_EQ(advanced(4092, 4), 0);
    EXPECT_EQ(advanced(4088, 5), 0);
    EXPECT_EQ(advanced(4088, 12), 4);
    EXPECT_EQ(advanced(100, 4092), 96);
}

TEST_F(GpuHalCommandFifo, FreeSpaceKeepsOneWordBack) {
    const auto freeSpace = [this](uint16_t writeOffset, uint16_t readOffset) {
        host.cmd_write_offset = writeOffset;
        board.poke(regCmdRead, readOffset);
        return Gpu_Cmdfifo_Freespace(&host);
    };
    EXPECT_EQ(freeSpace(0, 0), 4092);
    EXPECT_EQ(freeSpace(2000, 2000), 4092);
    EXPECT_EQ(freeSpace(8, 12), 0);
    EXPECT_EQ(freeSpace(12, 8), 4088);
    EXPECT_EQ(freeSpace(0, 4), 0);
    EXPECT_EQ(freeSpace(4, 4092), 4084);
    EXPECT_EQ(freeSpace(8, 0xFFF), 4083) << "where a stopped coprocessor's offset stands";
}

TEST_F(GpuHalCommandFifo, FreeSpaceIsOneRead) {
    Gpu_Cmdfifo_Freespace(&host);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read16(regCmdRead, 0)));
}

TEST_F(GpuHalCommandFifo, CheckWaitsForRoomWithoutAPause) {
    host.cmd_write_offset = 100;
    board.queueReads(regCmdRead, {104, 104, 108, 112});
    Gpu_Hal_CheckCmdBuffer(&host, 5);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read16(regCmdRead, 104),
                                                  Transaction::read16(regCmdRead, 104),
                                                  Transaction::read16(regCmdRead, 108),
                                                  Transaction::read16(regCmdRead, 112)));
    EXPECT_EQ(board.sleptMs(), 0U);
}

TEST_F(GpuHalCommandFifo, WritesAWordWhenThereIsRoom) {
    host.cmd_write_offset = 4092;
    board.queueReads(regCmdRead, {0, 4092});
    Gpu_Hal_WrCmd32(&host, 0xFFFFFF01);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read16(regCmdRead, 0),
                                                  Transaction::read16(regCmdRead, 4092),
                                                  Transaction::write32(ramCmd + 4092, 0xFFFFFF01),
                                                  Transaction::write16(regCmdWrite, 0)));
    EXPECT_EQ(host.cmd_write_offset, 0);
}

TEST_F(GpuHalCommandFifo, SendsABufferInOneMessage) {
    const std::vector<uint8_t> bytes = countingBytes(12);
    Gpu_Hal_WrCmdBuf(&host, bytes.data(), 12);
    EXPECT_THAT(
        board.transactions(),
        ElementsAre(Transaction::read16(regCmdRead, 0), Transaction::read16(regCmdRead, 0),
                    Transaction::write(ramCmd, bytes), Transaction::write16(regCmdWrite, 12),
                    Transaction::read16(regCmdRead, 12), Transaction::read16(regCmdWrite, 12)));
    EXPECT_THAT(board.transactions()[2].messageSizes, ElementsAre(3U, 12U));
    EXPECT_EQ(host.cmd_write_offset, 12);
}

TEST_F(GpuHalCommandFifo, SendsABufferOfOddLengthAsItIsAndAdvancesByWholeWords) {
    const std::vector<uint8_t> bytes = countingBytes(5);
    Gpu_Hal_WrCmdBuf_nowait(&host, bytes.data(), 5);
    EXPECT_EQ(board.transactions(Transaction::Write, ramCmd).at(0).data, bytes);
    EXPECT_EQ(host.cmd_write_offset, 8);
}

TEST_F(GpuHalCommandFifo, DoesNotSplitABufferAtTheEndOfTheRing) {
    host.cmd_write_offset = 4088;
    board.poke(regCmdRead, 4088);
    const std::vector<uint8_t> bytes = countingBytes(16);
    Gpu_Hal_WrCmdBuf(&host, bytes.data(), 16);
    EXPECT_THAT(board.transactions(Transaction::Write),
                ElementsAre(Transaction::write(ramCmd + 4088, bytes),
                            Transaction::write16(regCmdWrite, 8)));
}

TEST_F(GpuHalCommandFifo, SplitsABufferThatExceedsTheFreeSpace) {
    board.poke(regCmdRead, 12); // 8 bytes free, then an empty ring
    board.poke(regCmdWrite, 0);
    const std::vector<uint8_t> bytes = countingBytes(20);
    Gpu_Hal_WrCmdBuf(&host, bytes.data(), 20);
    EXPECT_THAT(
        board.transactions(),
        ElementsAre(
            Transaction::read16(regCmdRead, 12), // free space
            Transaction::read16(regCmdRead, 12), // check
            Transaction::write(ramCmd, slice(bytes, 0, 8)), Transaction::write16(regCmdWrite, 8),
            Transaction::read16(regCmdRead, 8),                                      // empty?
            Transaction::read16(regCmdWrite, 8), Transaction::read16(regCmdRead, 8), // free space
            Transaction::read16(regCmdRead, 8),                                      // check
            Transaction::write(ramCmd + 8, slice(bytes, 8, 20)),
            Transaction::write16(regCmdWrite, 20), Transaction::read16(regCmdRead, 20), // empty?
            Transaction::read16(regCmdWrite, 20)));
}

TEST_F(GpuHalCommandFifo, NoWaitSplitsTheSameWayWithoutWaitingForAnEmptyRing) {
    board.setCoprocessorIdle(false);
    board.queueReads(regCmdRead, {12, 12, 24, 24});
    const std::vector<uint8_t> bytes = countingBytes(20);
    Gpu_Hal_WrCmdBuf_nowait(&host, bytes.data(), 20);
    EXPECT_THAT(board.transactions(),
                ElementsAre(Transaction::read16(regCmdRead, 12), // free space
                            Transaction::read16(regCmdRead, 12), // check
                            Transaction::write(ramCmd, slice(bytes, 0, 8)),
                            Transaction::write16(regCmdWrite, 8),
                            Transaction::read16(regCmdRead, 24), // free space
                            Transaction::read16(regCmdRead, 24), // check
                            Transaction::write(ramCmd + 8, slice(bytes, 8, 20)),
                            Transaction::write16(regCmdWrite, 20)));
}

TEST_F(GpuHalCommandFifo, AFullRingGetsAnEmptyTransferAndIsWaitedFor) {
    board.setCoprocessorIdle(false);
    host.cmd_write_offset = 100;
    board.queueReads(regCmdRead, {104, 104, 104, 100, 100, 100, 104});
    const std::vector<uint8_t> bytes = countingBytes(4);
    Gpu_Hal_WrCmdBuf(&host, bytes.data(), 4);
    EXPECT_THAT(
        board.transactions(),
        ElementsAre(Transaction::read16(regCmdRead, 104), // free space: none
                    Transaction::read16(regCmdRead, 104), // check
                    Transaction::write(ramCmd + 100, {}), Transaction::write16(regCmdWrite, 100),
                    Transaction::read16(regCmdRead, 104), // empty? not yet
                    Transaction::read16(regCmdWrite, 100),
                    Transaction::read16(regCmdRead, 100), // empty? yes
                    Transaction::read16(regCmdWrite, 100),
                    Transaction::read16(regCmdRead, 100), // free space
                    Transaction::read16(regCmdRead, 100), // check
                    Transaction::write(ramCmd + 100, bytes), Transaction::write16(regCmdWrite, 104),
                    Transaction::read16(regCmdRead, 104), // empty
                    Transaction::read16(regCmdWrite, 104)));
    EXPECT_EQ(host.cmd_write_offset, 104);
}

TEST_F(GpuHalCommandFifo, SendsABufferLargerThanTheRing) {
    const std::vector<uint8_t> bytes = countingBytes(10000);
    Gpu_Hal_WrCmdBuf(&host, bytes.data(), 10000);
    EXPECT_EQ(board.commandBytes(), bytes);
    EXPECT_EQ(host.cmd_write_offset, 10000 % 4096);
}

TEST_F(GpuHalCommandFifo, ABufferOfNoBytesLeavesTheWriteOffset) {
    Gpu_Hal_WrCmdBuf(&host, nullptr, 0);
    EXPECT_THAT(board.transactions(Transaction::Write),
                ElementsAre(Transaction::write(ramCmd, {}), Transaction::write16(regCmdWrite, 0)));
}

TEST_F(GpuHalCommandFifo, WaitsUntilTheOffsetsAreEqualAndTakesThemOver) {
    board.poke(regCmdWrite, 40);
    board.queueReads(regCmdRead, {0, 20, 40});
    Gpu_Hal_WaitCmdfifo_empty(&host);
    EXPECT_THAT(
        board.transactions(),
        ElementsAre(Transaction::read16(regCmdRead, 0), Transaction::read16(regCmdWrite, 40),
                    Transaction::read16(regCmdRead, 20), Transaction::read16(regCmdWrite, 40),
                    Transaction::read16(regCmdRead, 40), Transaction::read16(regCmdWrite, 40)));
    EXPECT_EQ(board.sleptMs(), 0U);
    EXPECT_EQ(host.cmd_write_offset, 40);
}

TEST_F(GpuHalCommandFifo, StatusOfABusyRingIsZeroAtOnce) {
    host.cmd_write_offset = 16;
    board.poke(regCmdWrite, 40);
    EXPECT_EQ(Gpu_Hal_WaitCmdfifo_empty_status(&host), 0U);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read16(regCmdRead, 0),
                                                  Transaction::read16(regCmdWrite, 40)));
    EXPECT_EQ(host.cmd_write_offset, 16);
}

TEST_F(GpuHalCommandFifo, StatusOfAnEmptyRingReadsTheWriteOffsetAgain) {
    board.queueReads(regCmdRead, {40});
    board.queueReads(regCmdWrite, {40, 44});
    EXPECT_EQ(Gpu_Hal_WaitCmdfifo_empty_status(&host), 1U);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read16(regCmdRead, 40),
                                                  Transaction::read16(regCmdWrite, 40),
                                                  Transaction::read16(regCmdWrite, 44)));
    EXPECT_EQ(host.cmd_write_offset, 44);
}

TEST_F(GpuHalCommandFifo, WaitsForTheLogoUntilBothOffsetsAreZero) {
    host.cmd_write_offset = 16;
    board.queueReads(regCmdRead, {16, 16, 0, 0});
    board.queueReads(regCmdWrite, {16, 0, 16, 0});
    Gpu_Hal_WaitLogo_Finish(&host);
    EXPECT_EQ(board.transactions().size(), 8U);
    EXPECT_EQ(board.sleptMs(), 0U);
    EXPECT_EQ(host.cmd_write_offset, 0);
}

TEST_F(GpuHalCommandFifo, ResetForgetsTheOffsetOnTheHostOnly) {
    host.cmd_write_offset = 16;
    Gpu_Hal_ResetCmdFifo(&host);
    EXPECT_EQ(host.cmd_write_offset, 0);
    EXPECT_THAT(board.events(), IsEmpty());
}

// What one redraw of a screen with 26 words costs on the bus: a look at the touch tag, the flush,
// and the wait for the coprocessor that follows it.
TEST_F(GpuHalCommandFifo, AFlushOf104BytesIs25Messages) {
    const std::vector<uint8_t> bytes = countingBytes(104);
    Gpu_Hal_Rd8(&host, regTouchTag);
    Gpu_Hal_WrCmdBuf(&host, bytes.data(), 104);
    Gpu_Hal_WaitCmdfifo_empty(&host);
    EXPECT_EQ(board.messageCount(), 25U);
    EXPECT_EQ(board.byteCount(), 153U);
    std::vector<std::size_t> messageSizes;
    for (const Transaction& transaction : board.transactions()) {
        messageSizes.insert(messageSizes.end(), transaction.messageSizes.begin(),
                            transaction.messageSizes.end());
    }
    EXPECT_THAT(messageSizes, ElementsAre(4, 1,             // touch tag
                                          4, 1, 1,          // free space
                                          4, 1, 1,          // check
                                          3, 104,           // the words
                                          3, 1, 1,          // write offset
                                          4, 1, 1, 4, 1, 1, // empty
                                          4, 1, 1, 4, 1, 1  // empty
                                          ));
}

// ---- Display-list swap ----

using GpuHalSwap = GpuHal;

TEST_F(GpuHalSwap, OfALineIsAskedForAndDone) {
    Gpu_Hal_DLSwap(&host, 1);
    EXPECT_THAT(board.transactions(),
                ElementsAre(Transaction::write8(regDlSwap, 1), Transaction::read8(regDlSwap, 0)));
    EXPECT_EQ(board.sleptMs(), 0U);
}

TEST_F(GpuHalSwap, OfAnythingElseIsOneOfAFrame) {
    Gpu_Hal_DLSwap(&host, 2);
    Gpu_Hal_DLSwap(&host, 0);
    Gpu_Hal_DLSwap(&host, 77);
    EXPECT_EQ(board.transactions(Transaction::Write),
              std::vector<Transaction>(3, Transaction::write8(regDlSwap, 2)));
}

TEST_F(GpuHalSwap, SleepsAMillisecondAfterEachPollThatIsNotDone) {
    board.queueReads(regDlSwap, {2, 2, 0});
    Gpu_Hal_DLSwap(&host, 2);
    EXPECT_THAT(board.eventsBesidesMessages(), ElementsAre("CS low", "CS high", // the request
                                                           "CS low", "CS high", "sleep 1", //
                                                           "CS low", "CS high", "sleep 1", //
                                                           "CS low", "CS high"));
}

// ---- Other rings in controller memory ----

class GpuHalRing : public GpuHal {
protected:
    static constexpr uint32_t base = 0x20000;
    static constexpr uint32_t length = 1024;
    static constexpr uint32_t readRegister = 0x309014;
    static constexpr uint32_t writeRegister = 0x309018;

    GpuHalRing() { Fifo_Init(&fifo, base, length, readRegister, writeRegister); }

    void setOffsets(uint32_t writeOffset, uint32_t readOffset) {
        fifo.write_offset = writeOffset;
        board.poke(readRegister, readOffset);
    }

    uint32_t freeSpace(uint32_t writeOffset, uint32_t readOffset) {
        setOffsets(writeOffset, readOffset);
        return Fifo_GetFreeSpace(&host, &fifo);
    }

    Fifo_t fifo{};
};

TEST_F(GpuHalRing, StartsEmpty) {
    std::memset(&fifo, 0xFF, sizeof fifo);
    Fifo_Init(&fifo, base, length, readRegister, writeRegister);
    EXPECT_EQ(fifo.base_address, base);
    EXPECT_EQ(fifo.ring_length, length);
    EXPECT_EQ(fifo.write_offset, 0U);
    EXPECT_EQ(fifo.read_offset, 0U);
    EXPECT_EQ(fifo.read_register, readRegister);
    EXPECT_EQ(fifo.write_register, writeRegister);
    EXPECT_THAT(board.events(), IsEmpty());
}

TEST_F(GpuHalRing, FetchesTheReadOffset) {
    board.poke(readRegister, 0x12345678);
    Fifo_Update(&host, &fifo);
    EXPECT_EQ(fifo.read_offset, 0x12345678U);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read32(readRegister, 0x12345678)));
}

TEST_F(GpuHalRing, FreeSpaceKeepsAWordBackWhenThereIsOne) {
    EXPECT_EQ(freeSpace(0, 0), 1020U);
    EXPECT_EQ(freeSpace(100, 40), 960U);
    EXPECT_EQ(freeSpace(100, 102), 2U);
    EXPECT_EQ(freeSpace(100, 103), 3U);
    EXPECT_EQ(freeSpace(100, 104), 0U);
    EXPECT_EQ(freeSpace(100, 200), 96U);
}

TEST_F(GpuHalRing, ComparesOffsetsAsSignedNumbers) {
    EXPECT_EQ(freeSpace(0, 0xFFFFFFF0), 1024U - 16U - 4U);
}

TEST_F(GpuHalRing, WritesAndPublishes) {
    std::vector<uint8_t> bytes = countingBytes(6);
    setOffsets(8, 0);
    EXPECT_EQ(Fifo_Write(&host, &fifo, bytes.data(), 6), 6U);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read32(readRegister, 0),
                                                  Transaction::write(base + 8, bytes),
                                                  Transaction::write32(writeRegister, 14)));
}

TEST_F(GpuHalRing, WritesAroundTheEnd) {
    for (const uint32_t count : {10U, 5U}) { // the second by a single byte
        board.clearRecord();
        std::vector<uint8_t> bytes = countingBytes(count);
        setOffsets(1020, 512);
        EXPECT_EQ(Fifo_Write(&host, &fifo, bytes.data(), count), count);
        EXPECT_THAT(board.transactions(Transaction::Write),
                    ElementsAre(Transaction::write(base + 1020, slice(bytes, 0, 4)),
                                Transaction::write(base, slice(bytes, 4, count)),
                                Transaction::write32(writeRegister, count - 4)));
        EXPECT_EQ(fifo.write_offset, count - 4);
    }
}

TEST_F(GpuHalRing, AWriteUpToTheEndContinuesAtTheStart) {
    std::vector<uint8_t> bytes = countingBytes(4);
    setOffsets(1020, 512);
    EXPECT_EQ(Fifo_Write(&host, &fifo, bytes.data(), 4), 4U);
    EXPECT_THAT(board.transactions(Transaction::Write),
                ElementsAre(Transaction::write(base + 1020, bytes),
                            Transaction::write32(writeRegister, 0)));
}

TEST_F(GpuHalRing, AWriteThatJustFitsLooksOnce) {
    std::vector<uint8_t> bytes = countingBytes(4);
    setOffsets(100, 108);
    EXPECT_EQ(Fifo_Write(&host, &fifo, bytes.data(), 4), 4U);
    EXPECT_THAT(board.transactions(), ElementsAre(Transaction::read32(readRegister, 108),
                                                  Transaction::write(base + 100, bytes),
                                                  Transaction::write32(writeRegister, 104)));
}

TEST_F(GpuHalRing, WritesNoMoreThanFits) {
    std::vector<uint8_t> bytes = countingBytes(10);
    setOffsets(100, 108);
    EXPECT_EQ(Fifo_Write(&host, &fifo, bytes.data(), 10), 4U);
    EXPECT_THAT(board.transactions(),
                ElementsAre(Transaction::read32(readRegister, 108),
                            Transaction::read32(readRegister, 108),
                            Transaction::write(base + 100, slice(bytes, 0, 4)),
                            Transaction::write32(writeRegister, 104)));
}

TEST_F(GpuHalRing, LooksAgainBeforeItCutsAWrite) {
    std::vector<uint8_t> bytes = countingBytes(10);
    fifo.write_offset = 100;
    board.queueReads(readRegister, {104, 200});
    EXPECT_EQ(Fifo_Write(&host, &fifo, bytes.data(), 10), 10U);
}

TEST_F(GpuHalRing, WritesNothingToAFullRing) {
    std::vector<uint8_t> bytes = countingBytes(10);
    setOffsets(100, 104);
    EXPECT_EQ(Fifo_Write(&host, &fifo, bytes.data(), 10), 0U);
    EXPECT_THAT(board.transactions(Transaction::Write), IsEmpty());
    EXPECT_EQ(fifo.write_offset, 100U);
}

TEST_F(GpuHalRing, WritesNothingForNoBytes) {
    EXPECT_EQ(Fifo_Write(&host, &fifo, nullptr, 0), 0U);
    EXPECT_THAT(board.transactions(Transaction::Write), IsEmpty());
}

TEST_F(GpuHalRing, WriteWaitWritesEverythingAsRoomAppears) {
    std::vector<uint8_t> bytes = countingBytes(10);
    fifo.write_offset = 100;
    // Twice per piece: once to choose its size, once to write it.
    board.queueReads(readRegister, {104, 104, 110, 110, 200, 200});
    Fifo_WriteWait(&host, &fifo, bytes.data(), 10);
    EXPECT_THAT(board.transactions(Transaction::Write),
                ElementsAre(Transaction::write(base + 100, slice(bytes, 0, 6)),
                            Transaction::write32(writeRegister, 106),
                            Transaction::write(base + 106, slice(bytes, 6, 10)),
                            Transaction::write32(writeRegister, 110)));
    EXPECT_EQ(board.sleptMs(), 0U);
}

TEST_F(GpuHalRing, WriteWaitWritesALastByte) {
    std::vector<uint8_t> bytes = countingBytes(5);
    fifo.write_offset = 100;
    board.queueReads(readRegister, {108, 108, 200, 200});
    Fifo_WriteWait(&host, &fifo, bytes.data(), 5);
    EXPECT_THAT(board.transactions(Transaction::Write),
                ElementsAre(Transaction::write(base + 100, slice(bytes, 0, 4)),
                            Transaction::write32(writeRegister, 104),
                            Transaction::write(base + 104, slice(bytes, 4, 5)),
                            Transaction::write32(writeRegister, 105)));
}

TEST_F(GpuHalRing, WriteWaitOfMoreThanTheRingHolds) {
    // The consumer follows the writer closely.
    std::vector<uint8_t> bytes = countingBytes(3000);
    fifo.read_register = writeRegister;
    Fifo_WriteWait(&host, &fifo, bytes.data(), 3000);
    EXPECT_EQ(fifo.write_offset, 3000U % length);
    EXPECT_EQ(board.peek(base + fifo.write_offset - 4) >> 24, bytes.back());
}

TEST_F(GpuHalRing, Write32WritesTheLowByteFirst) {
    Fifo_Write32(&host, &fifo, 0x12345678);
    EXPECT_THAT(board.transactions(Transaction::Write),
                ElementsAre(Transaction::write(base, {0x78, 0x56, 0x34, 0x12}),
                            Transaction::write32(writeRegister, 4)));
}

} // namespace
