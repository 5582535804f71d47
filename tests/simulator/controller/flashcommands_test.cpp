#include "bytes.h"
#include "host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace controllertest;
using testing::Each;
using testing::ElementsAre;
using V = std::vector<std::uint32_t>;

constexpr std::uint32_t statusRegister = 0x3025F0;
constexpr std::uint8_t detached = 1;
constexpr std::uint8_t basic = 2;
constexpr std::uint8_t full = 3;
constexpr std::size_t megabyte = 1048576;

controller::Options withFlash(std::size_t size) {
    controller::Options options;
    options.flashSize = size;
    return options;
}

class FlashCommands : public testing::Test {
protected:
    FlashCommands() { host.boot(); }
    std::uint8_t status() { return host.read8(statusRegister); }
    // FLASHFAST and what it answers.
    std::uint32_t fast() {
        const std::uint32_t start = host.read16(host.at.cmdWrite());
        host.send({cmd::flashFast, 0xFFFFFFFF});
        return host.read32(host.at.ramCmd() + start + 4);
    }
    V page(std::uint32_t address, std::uint8_t value) {
        return V{cmd::flashWrite, address, 256} + V(64, value * 0x01010101U);
    }
    Bytes spi(const Bytes& sent, std::uint32_t received) {
        host.send({cmd::flashSpiDesel, cmd::flashSpiTx, static_cast<std::uint32_t>(sent.size())});
        host.sendBytes(sent);
        host.send({cmd::flashSpiRx, 5000, received, cmd::flashSpiDesel});
        return host.read(5000, received);
    }

    Host host{Generation::E3, withFlash(4 * megabyte)};
};

TEST_F(FlashCommands, AFittedChipIsAttachedAfterBoot) {
    EXPECT_EQ(status(), basic);
    EXPECT_EQ(host.read32(0x309024), 4U);
}

TEST_F(FlashCommands, StatesFollowTheCommands) {
    host.send({cmd::flashDetach});
    EXPECT_EQ(status(), detached);
    EXPECT_EQ(fast(), 0xE001U) << "not attached";
    EXPECT_EQ(status(), detached);
    host.send({cmd::flashAttach});
    EXPECT_EQ(status(), basic);
    EXPECT_EQ(fast(), 0U);
    EXPECT_EQ(status(), full);
    host.send({cmd::flashAttach});
    EXPECT_EQ(status(), full) << "basic only through detached";
    host.send({cmd::flashDetach, cmd::flashAttach});
    EXPECT_EQ(status(), basic);
}

TEST_F(FlashCommands, WithoutAChipNothingAttaches) {
    Host bare(Generation::E3);
    bare.boot();
    EXPECT_EQ(bare.read8(statusRegister), detached);
    bare.send({cmd::flashAttach});
    EXPECT_EQ(bare.read8(statusRegister), detached);
    bare.send({cmd::flashErase});
    EXPECT_TRUE(bare.ringIsEmpty());
    EXPECT_TRUE(bare.seen.complainedAbout("FLASHERASE: the flash is not attached"));
}

TEST_F(FlashCommands, WritingProgramsPages) {
    host.send(page(0x200, 0x5A));
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.chip.flash()[0x1FF], 0xFF);
    EXPECT_EQ(host.chip.flash()[0x200], 0x5A);
    EXPECT_EQ(host.chip.flash()[0x2FF], 0x5A);
    EXPECT_EQ(host.chip.flash()[0x300], 0xFF);
}

TEST_F(FlashCommands, ProgrammingCanOnlyClearBits) {
    host.send(page(0, 0xF0));
    host.send(page(0, 0x3C));
    EXPECT_EQ(host.chip.flash()[0], 0x30);
}

TEST_F(FlashCommands, WrongPageAlignmentIsAFault) {
    host.send({cmd::flashWrite, 0x180, 256});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
    EXPECT_TRUE(host.seen.complainedAbout("not a multiple of 256"));
}

TEST_F(FlashCommands, EraseClearsTheWholeChip) {
    host.send(page(0, 0) + page(3 * megabyte, 0));
    host.send({cmd::flashErase});
    host.wait(10 * ms);
    EXPECT_TRUE(host.chip.flash() == Bytes(4 * megabyte, 0xFF)); // faster than a matcher
}

TEST_F(FlashCommands, ReadingFromAMultipleOf64) {
    for (std::size_t i = 0; i < 128; ++i) {
        host.chip.flash()[0x1000 + i] = static_cast<std::uint8_t>(i);
    }
    host.send({cmd::flashRead, 100, 0x1040, 8});
    EXPECT_THAT(host.read(100, 9), ElementsAre(64, 65, 66, 67, 68, 69, 70, 71, 0));
    host.send({cmd::flashRead, 100, 0x1020, 8});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
}

TEST_F(FlashCommands, ReadingBeyondTheChipGivesErasedBytes) {
    host.send({cmd::flashRead, 100, 4 * megabyte, 8});
    EXPECT_THAT(host.read(100, 8), Each(0xFF));
}

TEST_F(FlashCommands, UpdateMakesSectorsHoldWhatMemoryHolds) {
    std::fill_n(host.chip.flash().begin(), 12288, std::uint8_t{0});
    host.send({cmd::memSet, 0, 0xA5, 8192, cmd::flashUpdate, 4096, 0, 8192});
    EXPECT_EQ(host.chip.flash()[4095], 0);
    EXPECT_EQ(host.chip.flash()[4096], 0xA5);
    EXPECT_EQ(host.chip.flash()[12287], 0xA5);
    EXPECT_EQ(host.chip.flash()[12288], 0xFF);
    host.send({cmd::flashUpdate, 100, 0, 4096});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
}

TEST_F(FlashCommands, TheChipsOwnCommandsNeedItDetached) {
    EXPECT_THAT(spi({0x9F}, 3), Each(0));
    EXPECT_TRUE(host.seen.complainedAbout("FLASHSPITX: the flash is not detached"));
    host.send({cmd::flashDetach});
    EXPECT_THAT(spi({0x9F}, 3), ElementsAre(0x7F, 0x01, 22)); // 2^22 bytes
}

TEST_F(FlashCommands, TheChipCanBeReadAndWrittenByItsOwnCommands) {
    host.send({cmd::flashDetach});
    spi({0x06}, 0);
    spi({0x02, 0x00, 0x10, 0x00, 1, 2, 3}, 0);
    EXPECT_EQ(host.chip.flash()[0x1002], 3);
    EXPECT_THAT(spi({0x03, 0x00, 0x10, 0x00}, 4), ElementsAre(1, 2, 3, 0xFF));
}

TEST_F(FlashCommands, ListsAndStreamsComeFromFlash) {
    const Bytes list = {0x56, 0x34, 0x12, 0x02, 0x07, 0x00, 0x00, 0x26};
    std::copy(list.begin(), list.end(), host.chip.flash().begin() + 64);
    host.send({cmd::dlStart, cmd::appendF, 64, 8});
    EXPECT_THAT(host.listWritten(), ElementsAre(0x02123456, 0x26000007));

    const Bytes data(3000, 0x42);
    const Bytes stream = compressed(data);
    std::copy(stream.begin(), stream.end(), host.chip.flash().begin() + 4096);
    host.send({cmd::flashSource, 4096, cmd::inflate2, 7000, 0x40, 0x2D000000});
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_TRUE(host.read(7000, 3000) == data);
    EXPECT_EQ(host.read8(10000), 0);
}

TEST_F(FlashCommands, AStreamThatIsNotThereIsAFault) {
    host.send({cmd::flashSource, 0, cmd::inflate2, 0, 0x40});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
}

} // namespace
