// The flash helper on a controller with a flash chip.

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "displaysettings.h"
#include "onmodel.h"

#include <algorithm>
#include <numeric>

namespace {

using controller::Generation;
using modelboard::controller;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t mebibyte = 1048576;
constexpr std::size_t sectorSize = 4096;
constexpr std::uint8_t erased = 0xFF;
constexpr std::uint32_t scratch = 0x40000; // in general memory

Bytes pattern(std::size_t count, std::uint8_t first = 1) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

class FlashOnModel : public OnModel {
protected:
    explicit FlashOnModel(std::size_t size = mebibyte) {
        controller::Options options;
        options.flashSize = size;
        bringUp(Generation::E3, options);
        detached = static_cast<std::uint8_t>(EVE_REG("__FLASH_STATUS_DETACHED"));
        basic = static_cast<std::uint8_t>(EVE_REG("__FLASH_STATUS_BASIC"));
        full = static_cast<std::uint8_t>(EVE_REG("__FLASH_STATUS_FULL"));
    }

    std::uint8_t state() { return Gpu_CoCmd_FlashHelper_GetState(&host); }

    // A state change as its caller gets it: asked for, and then waited for.
    std::uint8_t stateAfterSwitchTo(std::uint8_t wanted) {
        Gpu_CoCmd_FlashHelper_SwitchState(&host, wanted);
        Gpu_Hal_WaitCmdfifo_empty(&host);
        return state();
    }

    static Bytes content(std::size_t from, std::size_t count) {
        const Bytes& all = controller().flash();
        const auto first = all.begin() + static_cast<std::ptrdiff_t>(from);
        return {first, first + static_cast<std::ptrdiff_t>(count)};
    }

    // The whole chip. A matcher of each byte would take seconds.
    static bool isErased() {
        const Bytes& all = controller().flash();
        return all == Bytes(all.size(), erased);
    }

    static void program(std::size_t at, const Bytes& bytes) {
        std::copy(bytes.begin(), bytes.end(),
                  controller().flash().begin() + static_cast<std::ptrdiff_t>(at));
    }

    Bytes memory(std::uint32_t at, std::uint32_t count) {
        Bytes bytes(count);
        Gpu_Hal_RdMem(&host, at, bytes.data(), count);
        return bytes;
    }

    std::uint8_t detached = 0;
    std::uint8_t basic = 0;
    std::uint8_t full = 0;
};

// --- write

TEST_F(FlashOnModel, WritesThreeHundredBytesAndFillsUpTheSecondPage) {
    const Bytes data = pattern(300);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0x1000, 300, data.data()), Flash_Cmd_Ok);
    EXPECT_EQ(content(0x1000, 300), data);
    EXPECT_THAT(content(0x1000 + 300, 212 + 256), Each(erased));
    EXPECT_THAT(content(0x0F00, 256), Each(erased));
}

TEST_F(FlashOnModel, WritesWholePagesAndNothingBehindThem) {
    const Bytes data = pattern(512, 7);
    program(0x300, Bytes(4, 0x55));
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0x100, 512, data.data()), Flash_Cmd_Ok);
    EXPECT_EQ(content(0x100, 512), data);
    EXPECT_EQ(content(0x300, 4), Bytes(4, 0x55));
}

TEST_F(FlashOnModel, WritesMoreThanTheRingHolds) {
    const Bytes data = pattern(10'000);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0, 10'000, data.data()), Flash_Cmd_Ok);
    EXPECT_EQ(content(0, 10'000), data);
    EXPECT_THAT(content(10'000, 240), Each(erased));
}

TEST_F(FlashOnModel, WritesOneByteAsAPage) {
    const Bytes data = {0x5A};
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0x200, 1, data.data()), Flash_Cmd_Ok);
    EXPECT_EQ(content(0x200, 1), data);
    EXPECT_THAT(content(0x201, 255), Each(erased));
}

TEST_F(FlashOnModel, WritesNothingOfNoBytes) {
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, 0x200, 0, nullptr), Flash_Cmd_Ok);
    EXPECT_TRUE(isErased());
    EXPECT_TRUE(coprocessorIsIdle());
}

TEST_F(FlashOnModel, WritingOverDataOnlyClearsBits) {
    const Bytes first(256, 0xF0);
    const Bytes second(256, 0x3C);
    Gpu_CoCmd_FlashHelper_Write(&host, 0, 256, first.data());
    Gpu_CoCmd_FlashHelper_Write(&host, 0, 256, second.data());
    EXPECT_THAT(content(0, 256), Each(0x30));
}

// --- read

TEST_F(FlashOnModel, ReadOfTenBytesReadsEight) {
    program(0x80, pattern(16));
    Gpu_Hal_WrMem(&host, scratch, Bytes(16, 0xEE).data(), 16);
    Bytes out(10, 0xAA);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Read(&host, scratch, 0x80, 10, out.data()), Flash_Cmd_Ok);
    EXPECT_THAT(out, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 0xAA, 0xAA));
    EXPECT_EQ(memory(scratch + 8, 2), Bytes(2, 0xEE));
}

TEST_F(FlashOnModel, ReadsBackWhatItWrote) {
    const Bytes data = pattern(8192, 3);
    Gpu_CoCmd_FlashHelper_Write(&host, 0x2000, 8192, data.data());
    Bytes out(8192);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Read(&host, scratch, 0x2000, 8192, out.data()), Flash_Cmd_Ok);
    EXPECT_EQ(out, data);
}

TEST_F(FlashOnModel, ReadsFromEveryMultipleOf64) {
    program(0, pattern(256));
    Bytes out(4);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Read(&host, scratch, 0xC0, 4, out.data()), Flash_Cmd_Ok);
    EXPECT_THAT(out, ElementsAre(0xC1, 0xC2, 0xC3, 0xC4));
}

// --- update

TEST_F(FlashOnModel, UpdateOfAHundredBytesUpdatesASector) {
    program(0, Bytes(3 * sectorSize, 0x11));
    const Bytes data = pattern(4096, 9);
    Gpu_Hal_WrMem(&host, scratch, data.data(), 4096);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, 4096, scratch, 100), Flash_Cmd_Ok);
    EXPECT_THAT(content(0, 4096), Each(0x11));
    EXPECT_EQ(content(4096, 4096), data);
    EXPECT_THAT(content(8192, 4096), Each(0x11));
}

TEST_F(FlashOnModel, UpdateOfFiveThousandBytesUpdatesTwoSectors) {
    program(0, Bytes(3 * sectorSize, 0x11));
    const Bytes data = pattern(8192, 9);
    Gpu_Hal_WrMem(&host, scratch, data.data(), 8192);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, 0, scratch, 5000), Flash_Cmd_Ok);
    EXPECT_EQ(content(0, 8192), data);
    EXPECT_THAT(content(8192, 4096), Each(0x11));
}

TEST_F(FlashOnModel, UpdateOfWholeSectorsUpdatesJustThose) {
    program(0, Bytes(3 * sectorSize, 0x11));
    const Bytes data(8192, 0x22);
    Gpu_Hal_WrMem(&host, scratch, data.data(), 8192);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, 0, scratch, 8192), Flash_Cmd_Ok);
    EXPECT_THAT(content(0, 8192), Each(0x22));
    EXPECT_THAT(content(8192, 4096), Each(0x11));
}

// --- erase, cache

TEST_F(FlashOnModel, EraseLeavesEveryByteErased) {
    program(0x12345, pattern(1000));
    Gpu_CoCmd_FlashHelper_Erase(&host);
    EXPECT_TRUE(isErased());
    EXPECT_TRUE(coprocessorIsIdle());
}

TEST_F(FlashOnModel, ClearCacheIsCarriedOut) {
    Gpu_CoCmd_FlashHelper_ClearCache(&host);
    EXPECT_TRUE(coprocessorIsIdle());
}

// --- alignment

TEST_F(FlashOnModel, MisalignedAddressesTouchNothing) {
    Bytes data(8192, 0x22);
    const std::uint32_t listsBefore = controller().peek32(EVE_REG("__REG_CMD_WRITE"));
    for (const std::uint32_t misaligned : {0x180U, 1U, 0xFFU, 0x101U}) {
        EXPECT_EQ(Gpu_CoCmd_FlashHelper_Write(&host, misaligned, 512, data.data()),
                  Flash_Cmd_Misaligned);
    }
    for (const std::uint32_t misaligned : {256U, 4095U, 2048U}) {
        EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, misaligned, scratch, 4096),
                  Flash_Cmd_Misaligned);
    }
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Update(&host, 0, scratch + 2, 4096), Flash_Cmd_Misaligned);
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_Read(&host, scratch + 1, 0, 8, data.data()),
              Flash_Cmd_Misaligned);
    for (const std::uint32_t misaligned : {4U, 32U, 63U, 96U}) {
        EXPECT_EQ(Gpu_CoCmd_FlashHelper_Read(&host, scratch, misaligned, 8, data.data()),
                  Flash_Cmd_Misaligned);
    }
    EXPECT_EQ(controller().peek32(EVE_REG("__REG_CMD_WRITE")), listsBefore);
    EXPECT_TRUE(isErased());
    EXPECT_EQ(data, Bytes(8192, 0x22));
}

// --- states

TEST_F(FlashOnModel, IsAttachedAfterTheStart) {
    EXPECT_EQ(state(), basic);
}

TEST_F(FlashOnModel, GoesThroughEveryStateAndBack) {
    EXPECT_EQ(stateAfterSwitchTo(detached), detached);
    EXPECT_EQ(stateAfterSwitchTo(basic), basic);
    EXPECT_EQ(stateAfterSwitchTo(full), full);
    EXPECT_EQ(stateAfterSwitchTo(basic), basic); // by way of detached
    EXPECT_EQ(stateAfterSwitchTo(full), full);
    EXPECT_EQ(stateAfterSwitchTo(detached), detached);
    EXPECT_EQ(stateAfterSwitchTo(full), full); // by way of basic
}

TEST_F(FlashOnModel, EveryStepOfTheWayAnswersZero) {
    for (const std::uint8_t wanted : {detached, basic, full, basic, full, detached, full}) {
        EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, wanted), 0U);
        Gpu_Hal_WaitCmdfifo_empty(&host);
    }
}

TEST_F(FlashOnModel, TheStateAlreadyCurrentSendsNothing) {
    const std::uint32_t before = controller().peek32(EVE_REG("__REG_CMD_WRITE"));
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, basic), 0U);
    EXPECT_EQ(controller().peek32(EVE_REG("__REG_CMD_WRITE")), before);
}

TEST_F(FlashOnModel, UnknownStatesAreRefused) {
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchState(&host, 9), 0xFFFFU);
    EXPECT_EQ(state(), basic);
}

TEST_F(FlashOnModel, FullModeIsReachedFromEveryState) {
    for (const std::uint8_t from : {detached, basic, full}) {
        EXPECT_EQ(stateAfterSwitchTo(from), from);
        EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchFullMode(&host), 1U);
        EXPECT_EQ(state(), full);
    }
}

TEST_F(FlashOnModel, WritesAndReadsAtFullSpeedToo) {
    Gpu_CoCmd_FlashHelper_SwitchFullMode(&host);
    const Bytes data = pattern(256);
    Bytes out(256);
    Gpu_CoCmd_FlashHelper_Write(&host, 0, 256, data.data());
    Gpu_CoCmd_FlashHelper_Read(&host, scratch, 0, 256, out.data());
    EXPECT_EQ(out, data);
}

TEST_F(FlashOnModel, InitReturnsAtOnceWhenAttached) {
    Gpu_CoCmd_FlashHelper_Init(&host);
    EXPECT_EQ(CmdBuffer_Index, 0U);
}

TEST_F(FlashOnModel, InitAttachesADetachedFlash) {
    stateAfterSwitchTo(detached);
    Gpu_CoCmd_FlashHelper_Init(&host);
    EXPECT_EQ(state(), basic);
}

TEST_F(FlashOnModel, CommandsOnADetachedFlashDoNothingButAreComplainedAbout) {
    stateAfterSwitchTo(detached);
    const Bytes data(256, 0);
    Bytes out(4, 0xAA);
    Gpu_Hal_Wr32(&host, scratch, 0x12345678);
    Gpu_CoCmd_FlashHelper_Write(&host, 0, 256, data.data());
    Gpu_CoCmd_FlashHelper_Update(&host, 0, scratch, 4096);
    Gpu_CoCmd_FlashHelper_Read(&host, scratch, 0, 4, out.data());
    Gpu_CoCmd_FlashHelper_Erase(&host);
    EXPECT_THAT(out, ElementsAre(0x78, 0x56, 0x34, 0x12));
    EXPECT_TRUE(isErased());
    EXPECT_THAT(takeComplaints(), ElementsAre(HasSubstr("FLASHWRITE"), HasSubstr("FLASHUPDATE"),
                                              HasSubstr("FLASHREAD"), HasSubstr("FLASHERASE")));
}

// --- sizes of the chip

class LargeFlashOnModel : public FlashOnModel {
protected:
    LargeFlashOnModel() : FlashOnModel(8 * mebibyte) {}
};

TEST_F(LargeFlashOnModel, SaysItsSizeInMebibytes) {
    EXPECT_EQ(Gpu_Hal_Rd32(&host, EVE_REG("__REG_FLASH_SIZE")), 8U);
}

TEST_F(LargeFlashOnModel, IsWrittenUpToItsEnd) {
    const Bytes data = pattern(256);
    Gpu_CoCmd_FlashHelper_Write(&host, 8 * mebibyte - 256, 256, data.data());
    EXPECT_EQ(content(8 * mebibyte - 256, 256), data);
}

TEST_F(LargeFlashOnModel, BehindItsEndThereIsNothing) {
    const Bytes data = pattern(256);
    Bytes out(4);
    Gpu_CoCmd_FlashHelper_Write(&host, 8 * mebibyte, 256, data.data());
    Gpu_CoCmd_FlashHelper_Read(&host, scratch, 8 * mebibyte, 4, out.data());
    EXPECT_THAT(out, Each(erased));
    EXPECT_TRUE(isErased());
}

// --- no flash chip

class NoFlashOnModel : public FlashOnModel {
protected:
    NoFlashOnModel() : FlashOnModel(0) {}
};

TEST_F(NoFlashOnModel, StaysDetached) {
    EXPECT_EQ(state(), detached);
    Gpu_CoCmd_FlashAttach(&host);
    complete();
    EXPECT_EQ(state(), detached);
}

TEST_F(NoFlashOnModel, FullModeIsNotReached) {
    EXPECT_EQ(Gpu_CoCmd_FlashHelper_SwitchFullMode(&host), 0U);
}

TEST_F(NoFlashOnModel, BasicIsAskedForOnceAndNotReached) {
    EXPECT_EQ(stateAfterSwitchTo(basic), detached);
}

TEST_F(NoFlashOnModel, TheWayToFullModeWaitsForEver) {
    giveUpAfter(seconds(1));
    EXPECT_THROW(Gpu_CoCmd_FlashHelper_SwitchState(&host, full), TookTooLong);
}

TEST_F(NoFlashOnModel, InitWaitsForEver) {
    giveUpAfter(seconds(1));
    EXPECT_THROW(Gpu_CoCmd_FlashHelper_Init(&host), TookTooLong);
}

// --- other generations

class FlashOnOlderController : public OnModel {};
using FlashOnOlderControllerDeathTest = FlashOnOlderController;

TEST_F(FlashOnOlderControllerDeathTest, EndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    bringUp(Generation::E2);
    EXPECT_DEATH(Gpu_CoCmd_FlashHelper_SwitchFullMode(&host),
                 "EVE3 && \"This function worked only on EVE3 device\"");
}

} // namespace
