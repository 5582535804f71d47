#include "bytes.h"
#include "host.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace controllertest;
using V = std::vector<std::uint32_t>;

constexpr std::int64_t workOfSlice = 2'000'000; // in a millisecond
constexpr std::uint32_t megabyte = 1048576;
constexpr std::uint32_t belowRegisters = 0x300000; // most of the address space

controller::Options withFlash() {
    controller::Options options;
    options.flashSize = 64 * megabyte;
    return options;
}

// What the coprocessor does is counted, and what is more than a slice of time has room for is done
// in later ones. Counts, not times: they are the same on every machine.
class CoprocessorWork : public testing::Test {
protected:
    CoprocessorWork() { host.boot(); }

    // Sends a burst, then lets `slices` milliseconds pass. The most work that was done in one go:
    // in the burst, or in one of the slices.
    std::int64_t mostWork(const V& burst, int slices) {
        std::int64_t before = host.chip.coprocessorWork();
        if (!burst.empty()) {
            host.send(burst);
        }
        std::int64_t most = host.chip.coprocessorWork() - before;
        for (int i = 0; i < slices; ++i) {
            before = host.chip.coprocessorWork();
            host.wait(ms);
            most = std::max(most, host.chip.coprocessorWork() - before);
        }
        return most;
    }
    std::int64_t workOf(const V& burst) { return mostWork(burst, 0); }

    Host host{Generation::E3, withFlash()};
};

TEST_F(CoprocessorWork, IsCountedInBytesMoved) {
    const std::int64_t little = workOf({cmd::memZero, 0, 4});
    EXPECT_LT(little, 1000);
    EXPECT_NEAR(static_cast<double>(workOf({cmd::memZero, 0, 500'000}) - little), 500e3, 1e3);
    host.wait(ms);
    EXPECT_NEAR(static_cast<double>(workOf({cmd::memCpy, 0, 500'000, 400'000}) - little), 800e3,
                1e3);
    host.wait(ms);
    EXPECT_NEAR(static_cast<double>(workOf({cmd::memCrc, 0, 500'000, 0}) - little), 1000e3, 1e3);
    host.wait(ms);
    EXPECT_GT(workOf({cmd::memZero, 0x302600, 256}), 256 * 20) << "registers are more work";
}

TEST_F(CoprocessorWork, WhatASliceHasRoomForIsDoneAtOnce) {
    host.send(repeated({cmd::memZero, 0, 100'000}, 15));
    EXPECT_TRUE(host.ringIsEmpty());
}

TEST_F(CoprocessorWork, SumsOverAllOfMemoryTakeManySlices) {
    const V burst = repeated({cmd::memCrc, 0, belowRegisters, 0}, 255);
    const std::int64_t one = 2 * std::int64_t{belowRegisters} + 10'000;
    EXPECT_LT(mostWork(burst, 100), workOfSlice + one);
    EXPECT_FALSE(host.ringIsEmpty());
    host.wait(2000 * ms);
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.read32(host.at.ramCmd() + 12), host.read32(host.at.ramCmd() + 254 * 16 + 12));
    EXPECT_GT(host.chip.coprocessorWork(), 255 * std::int64_t{belowRegisters});
}

TEST_F(CoprocessorWork, ACommandIsDoneWhenItHasBeenPaidFor) {
    host.send({cmd::memSet, 0, 0x11, 900'000, cmd::memCpy, 0, 0, 900'000, cmd::memSet, 0, 0x22, 4});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 28) << "busy with the copy";
    EXPECT_EQ(host.read8(0), 0x11);
    host.wait(ms);
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.read8(0), 0x22);
}

TEST_F(CoprocessorWork, ErasingTheFlashTakesManySlices) {
    EXPECT_LE(mostWork(repeated({cmd::flashErase}, 1000), 50), workOfSlice + megabyte + 10'000);
    EXPECT_EQ(host.read16(host.at.cmdRead()), 4) << "busy with the second";
    host.wait(35 * ms);
    EXPECT_EQ(host.read16(host.at.cmdRead()), 8) << "busy with the third";
}

TEST_F(CoprocessorWork, ErasingTheFlashOverItsOwnBusIsPaidForAfterwards) {
    host.send({cmd::flashDetach});
    const V erase = {cmd::flashSpiTx, 1, 0x06, cmd::flashSpiDesel,
                     cmd::flashSpiTx, 1, 0xC7, cmd::flashSpiDesel};
    EXPECT_LT(mostWork(repeated(erase, 100), 20), 64 * std::int64_t{megabyte} + workOfSlice);
    EXPECT_FALSE(host.ringIsEmpty());
}

TEST_F(CoprocessorWork, SnapshotsTakeManySlices) {
    host.startPanel();
    const std::int64_t one = 480 * 272 * (20 + 8) + 10'000; // stored, and drawn
    EXPECT_LT(mostWork(repeated({cmd::snapshot, 0}, 500), 10), workOfSlice + one);
    EXPECT_FALSE(host.ringIsEmpty());
}

// A list that runs in circles until it is given up, and paints in the colour of a macro register:
// each new value is a new picture, which is drawn when the command asks for a pixel's tag.
class DrawingForTags : public CoprocessorWork {
protected:
    DrawingForTags() {
        host.startPanel();
        host.send({cmd::dlStart, 0x26000007, 0x25000000, 0x1F000009, 0x40000000,
                   0x40000000U | 7680U << 15U | 4352U, 0x1E000001, cmd::swap});
        host.waitFrames(2);
    }
    // Each paints anew.
    V looks(std::uint32_t count) const {
        V result;
        for (std::uint32_t i = 0; i < count; ++i) {
            result = result +
                     V{cmd::memWrite, host.at.macro0(), 4, 0x04000000U | i, cmd::regRead, tag, 0};
        }
        return result;
    }

    static constexpr std::uint32_t tag = 0x30207C; // REG_TAG
    static constexpr std::int64_t mostOfPicture = 52'000'000;
};

TEST_F(DrawingForTags, IsPaidForByTheCommandThatAsks) {
    EXPECT_LT(mostWork(looks(100), 40), workOfSlice + mostOfPicture);
    EXPECT_FALSE(host.ringIsEmpty());
}

TEST_F(DrawingForTags, CostsTheSameWhoeverElseLooks) {
    const std::int64_t alone = workOf(looks(1));
    EXPECT_GT(alone, mostOfPicture * 9 / 10);
    host.wait(100 * ms);
    host.write32(host.at.macro0(), 0x04000000); // as the command will
    host.chip.frame();
    EXPECT_EQ(workOf(looks(1)), alone);
    EXPECT_EQ(host.read32(host.at.ramCmd() + (host.read16(host.at.cmdWrite()) - 4U)), 255U);
}

TEST_F(CoprocessorWork, AStreamThatUnpacksToManyTimesItsSizeTakesManySlices) {
    const Bytes packed = compressed(Bytes(32 * megabyte));
    std::vector<std::uint8_t>& flash = host.chip.flash();
    std::copy(packed.begin(), packed.end(), flash.begin() + 4096);
    EXPECT_LT(mostWork({cmd::flashSource, 4096, cmd::inflate2, 0, 0x40}, 30),
              workOfSlice + 4096 * 1100 * 4);
    EXPECT_FALSE(host.ringIsEmpty());
    host.wait(100 * ms);
    EXPECT_TRUE(host.ringIsEmpty());
}

TEST_F(CoprocessorWork, AProgramThatKeepsItselfGoingLeavesTheRestAlone) {
    // Two commands far from each other, each of which moves CMD_WRITE behind the other.
    V program(1024, cmd::dlStart);
    const V first = {cmd::memCpy, host.at.cmdWrite(), 0, 4};
    const V second = {cmd::memCpy, host.at.cmdWrite(), 4, 4};
    std::copy(first.begin(), first.end(), program.begin());
    std::copy(second.begin(), second.end(), program.begin() + 512 / 4);
    host.write32(0, 1024);
    host.write32(4, 256);
    host.chip.setCoprocessorStalled(true);
    host.send(program);
    host.write16(host.at.cmdWrite(), 1024);
    host.chip.setCoprocessorStalled(false);
    EXPECT_LT(mostWork({}, 20), workOfSlice + 10'000);
    EXPECT_GT(host.chip.coprocessorWork(), 20 * workOfSlice);
    EXPECT_FALSE(host.ringIsEmpty());
}

TEST_F(CoprocessorWork, WidgetsCostWhatTheyAddToTheList) {
    const V gauge = {cmd::dlStart, cmd::gauge,   pair(100, 100),
                     pair(90, 0),  pair(10, 30), pair(1, 2)};
    EXPECT_LT(workOf(repeated(gauge, 160)), workOfSlice + 100'000);
    EXPECT_FALSE(host.ringIsEmpty());
    host.wait(20 * ms);
    EXPECT_TRUE(host.ringIsEmpty());
}

TEST_F(CoprocessorWork, ASnapshotStaysInsideGeneralMemory) {
    host.write16(host.at.hCycle() + 8, 2048); // REG_HSIZE
    host.write16(host.at.hCycle() + 28, 2048);
    host.send({cmd::dlStart, 0x02FF8040, 0x26000007, 0, cmd::swap});
    const Bytes registers = host.read(host.at.hCycle(), 40);
    const std::uint32_t start = host.read16(host.at.cmdWrite());
    host.send({cmd::snapshot2, 0x20, 0x1000, pair(0, 0), pair(2048, 2048)});
    host.wait(200 * ms);
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.read32(0x1000), 0xFFFF8040U);
    EXPECT_EQ(host.read32(0xFFFFC), 0xFFFF8040U);
    EXPECT_EQ(host.read32(0xFFC), 0U);
    EXPECT_EQ(host.read32(0), 0U) << "nor from the start again";
    EXPECT_EQ(host.read32(host.at.ramCmd() + start), cmd::snapshot2);
    EXPECT_EQ(host.read(host.at.hCycle(), 40), registers);
    EXPECT_TRUE(host.seen.complainedAbout("SNAPSHOT2: the picture reaches beyond general memory"));
}

TEST_F(CoprocessorWork, ASnapshotOutsideOfGeneralMemoryIsNotStored) {
    const std::uint32_t length = host.read32(host.at.cmdDl());
    host.send({cmd::snapshot2, 0x20, host.at.ramDl(), pair(0, 0), pair(4, 4)});
    EXPECT_EQ(host.read32(host.at.cmdDl()), length);
    EXPECT_EQ(host.read32(host.at.ramDl()), 0U);
    EXPECT_TRUE(host.seen.complainedAbout("reaches beyond general memory"));
}

} // namespace
