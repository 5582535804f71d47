#include "bytes.h"
#include "host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace controllertest;
using testing::ElementsAre;
using V = std::vector<std::uint32_t>;

Bytes pattern(std::size_t size) {
    Bytes bytes(size);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(state >> 28U); // compresses, but not to nothing
    }
    return bytes;
}

class MemoryCommands : public testing::Test {
protected:
    MemoryCommands() { host.boot(); }
    // A command whose result is its last word: what stands there afterwards.
    std::uint32_t resultOf(const V& command) {
        const std::uint32_t start = host.read16(host.at.cmdWrite());
        host.send(command);
        return host.read32(host.at.ramCmd() +
                           ((start + static_cast<std::uint32_t>(command.size() - 1) * 4) & 0xFFC));
    }
    // As a driver does: pieces no larger than the free space, each waited for.
    void stream(const Bytes& data) {
        constexpr std::size_t piece = 1500;
        for (std::size_t at = 0; at < data.size(); at += piece) {
            host.sendBytes(Bytes(
                data.begin() + static_cast<std::ptrdiff_t>(at),
                data.begin() + static_cast<std::ptrdiff_t>(std::min(at + piece, data.size()))));
            ASSERT_TRUE(host.ringIsEmpty());
        }
    }

    Host host{Generation::E3};
};

TEST_F(MemoryCommands, FillAndClear) {
    host.send({cmd::memSet, 100, 0x1AB, 8});
    EXPECT_THAT(host.read(99, 10),
                ElementsAre(0, 0xAB, 0xAB, 0xAB, 0xAB, 0xAB, 0xAB, 0xAB, 0xAB, 0));
    host.send({cmd::memZero, 101, 3});
    EXPECT_THAT(host.read(100, 5), ElementsAre(0xAB, 0, 0, 0, 0xAB));
}

TEST_F(MemoryCommands, CopyTakesAListOutOfTheBufferBeingWritten) {
    host.send({cmd::dlStart, 0x02123456, 0x26000007, cmd::memCpy, 100000, host.at.ramDl(), 8});
    EXPECT_EQ(host.read32(100000), 0x02123456U);
    EXPECT_EQ(host.read32(100004), 0x26000007U);
}

TEST_F(MemoryCommands, CopyReadsRegisters) {
    host.send({cmd::memCpy, 0, host.at.id(), 4});
    EXPECT_EQ(host.read32(0), 0x7CU);
}

TEST_F(MemoryCommands, CopyWritesRegistersWithTheirEffects) {
    host.write32(0, 5);
    host.send({cmd::memCpy, host.at.pclk(), 0, 4});
    EXPECT_TRUE(host.chip.panel().scanning);
}

TEST_F(MemoryCommands, WriteTakesItsBytesFromTheRing) {
    host.send({cmd::dlStart, cmd::memWrite, 50, 6, 0x04030201, 0xEEEE0605, 0x26000007});
    EXPECT_THAT(host.read(50, 7), ElementsAre(1, 2, 3, 4, 5, 6, 0));
    EXPECT_EQ(host.read16(host.at.cmdDl()), 4) << "the padding is not taken for words";
    host.send({cmd::memWrite, 50, 0, 0x26000007});
    EXPECT_EQ(host.read16(host.at.cmdDl()), 8);
}

TEST_F(MemoryCommands, ResultsReplaceTheirPlaceholders) {
    host.write(0, {'1', '2', '3', '4', '5', '6', '7', '8', '9'});
    EXPECT_EQ(resultOf({cmd::memCrc, 0, 9, 0}), 0xCBF43926U);
    EXPECT_EQ(resultOf({cmd::regRead, host.at.id(), 0}), 0x7CU);
}

TEST_F(MemoryCommands, AppendCopiesWordsBehindTheList) {
    host.write32(100000, 0x02ABCDEF);
    host.write32(100004, 0x26000007);
    host.send({cmd::dlStart, 0x04FFFFFF, cmd::append, 100000, 8});
    EXPECT_THAT(host.listWritten(), ElementsAre(0x04FFFFFF, 0x02ABCDEF, 0x26000007));
}

TEST_F(MemoryCommands, AppendingTooMuchIsAFault) {
    host.send({cmd::dlStart, 0x26000007, cmd::append, 0, 8192});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
    EXPECT_TRUE(host.seen.complainedAbout("overflow"));
}

TEST_F(MemoryCommands, InflateUnpacksAStreamLongerThanTheRing) {
    const Bytes data = pattern(79900);
    const Bytes packed = compressed(data);
    ASSERT_GT(packed.size(), 8192U);
    host.send({cmd::inflate, 0});
    stream(packed);
    EXPECT_TRUE(host.read(0, data.size()) == data);
    EXPECT_EQ(resultOf({cmd::getPtr, 0}), 79900U);
}

TEST_F(MemoryCommands, BehindAStreamCommandsGoOnAtTheNextWord) {
    for (std::size_t size : {1U, 2U, 3U, 4U, 5U, 6U}) {
        const Bytes data(size, 'x');
        host.send({cmd::dlStart, cmd::inflate, 1000});
        host.sendBytes(compressed(data));
        host.send({0x26000007});
        EXPECT_EQ(host.read16(host.at.cmdDl()), 4) << size;
        EXPECT_TRUE(host.read(1000, size) == data);
    }
}

TEST_F(MemoryCommands, InflateWaitsForTheRestOfItsData) {
    const Bytes packed = compressed(pattern(500));
    host.send({cmd::inflate, 0});
    host.sendBytes(Bytes(packed.begin(), packed.begin() + 40));
    EXPECT_TRUE(host.ringIsEmpty());
    host.sendBytes(Bytes(packed.begin() + 40, packed.end()));
    EXPECT_TRUE(host.read(0, 500) == pattern(500));
}

TEST_F(MemoryCommands, ACorruptStreamIsAFault) {
    host.send({cmd::inflate, 0, 0x12345678, 0x9ABCDEF0});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
    EXPECT_TRUE(host.seen.complainedAbout("INFLATE: corrupt zlib stream"));
}

TEST_F(MemoryCommands, AStreamThatDoesNotFitGoesOnlyAsFarAsMemory) {
    host.send({cmd::inflate, 0x0FFFF0});
    host.sendBytes(compressed(Bytes(64, 0x77)));
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.read8(0x0FFFFF), 0x77);
    EXPECT_EQ(host.read8(0x100000), 0);
}

TEST_F(MemoryCommands, SnapshotStoresThePicture) {
    host.startPanel();
    host.send({cmd::dlStart, 0x02FF8040, 0x26000007, 0, cmd::swap});
    host.waitFrames(2);
    host.send({cmd::snapshot2, 6, 1000, pair(0, 0), pair(2, 2)}); // ARGB4
    EXPECT_THAT(host.read(1000, 9), ElementsAre(0x84, 0xFF, 0x84, 0xFF, 0x84, 0xFF, 0x84, 0xFF, 0));
    host.wait(2 * ms);                                                // a picture is much work
    host.send({cmd::snapshot2, 7, 1000, pair(478, 270), pair(4, 4)}); // RGB565, partly outside
    EXPECT_THAT(host.read(1000, 4), ElementsAre(0x08, 0xFC, 0x08, 0xFC));
    host.wait(2 * ms);
    host.send({cmd::snapshot2, 0x20, 1000, pair(0, 0), pair(1, 1)}); // ARGB8
    EXPECT_EQ(host.read32(1000), 0xFFFF8040U);
}

TEST_F(MemoryCommands, TheFirstGenerationsSnapshotIsArgb4) {
    Host e1(Generation::E1);
    e1.bootWithPanel();
    e1.send({cmd::dlStart, 0x02FF8040, 0x26000007, 0, cmd::swap});
    e1.waitFrames(2);
    e1.send({cmd::snapshot, 0});
    EXPECT_EQ(e1.read16(0), 0xFF84);
    EXPECT_EQ(e1.read16(480 * 200 * 2), 0xFF84);
}

TEST_F(MemoryCommands, InterruptRaisesItsFlagAfterItsTime) {
    host.send({cmd::interrupt, 100});
    EXPECT_EQ(host.chip.peek8(host.at.intFlags()) & 0x40, 0);
    host.wait(99 * ms);
    EXPECT_EQ(host.chip.peek8(host.at.intFlags()) & 0x40, 0);
    host.wait(2 * ms);
    EXPECT_EQ(host.chip.peek8(host.at.intFlags()) & 0x40, 0x40);
}

} // namespace
