#include "addressspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace controller;
using testing::ElementsAre;
using testing::Pair;

class RecordingBehaviour : public RegisterBehaviour {
public:
    std::uint32_t readRegister(Register id) override {
        ++reads;
        return peekRegister(id);
    }
    std::uint32_t peekRegister(Register id) const override {
        const auto found = values.find(id);
        return found == values.end() ? 0 : found->second;
    }
    void writeRegister(Register id, std::uint32_t value) override {
        writes.emplace_back(id, value);
        values[id] = value;
    }
    void complainOfAccess(const char* what, std::uint32_t address) override {
        complaints.emplace_back(what, address);
    }

    std::map<Register, std::uint32_t> values;
    std::vector<std::pair<Register, std::uint32_t>> writes;
    std::vector<std::pair<std::string, std::uint32_t>> complaints;
    int reads = 0;
};

class AddressSpaceTest : public testing::Test {
protected:
    void burst(std::uint32_t address, const std::vector<std::uint8_t>& bytes) {
        for (const std::uint8_t byte : bytes) {
            space.write8(address, byte);
            address = space.nextWrite(address);
        }
        space.endBurst();
    }

    MemoryMap memory{Generation::E3, {}};
    RecordingBehaviour registers;
    AddressSpace space{Generation::E3, memory, registers};
};

TEST_F(AddressSpaceTest, RegisterBytesTakeEffectTogether) {
    burst(0x3020FC, {0x34, 0x02});
    EXPECT_THAT(registers.writes, ElementsAre(Pair(Register::CmdWrite, 0x234)));
}

TEST_F(AddressSpaceTest, AByteWriteKeepsTheRegistersOtherBytes) {
    registers.values[Register::HCycle] = 0x224;
    burst(0x30202C, {0x11});
    EXPECT_THAT(registers.writes, ElementsAre(Pair(Register::HCycle, 0x211)));
}

TEST_F(AddressSpaceTest, ABurstOverRegistersWritesEachOnce) {
    burst(0x302054, {2, 0, 0, 0, 1, 0, 0, 0});
    EXPECT_THAT(registers.writes,
                ElementsAre(Pair(Register::DlSwap, 2), Pair(Register::Rotate, 1)));
}

TEST_F(AddressSpaceTest, ReadingARegisterInPiecesIsOneRead) {
    registers.values[Register::TouchScreenXy] = 0x01020304;
    EXPECT_EQ(space.read8(0x302124), 4);
    registers.values[Register::TouchScreenXy] = 0xFFFFFFFF;
    EXPECT_EQ(space.read8(0x302125), 3);
    EXPECT_EQ(space.read8(0x302126), 2);
    EXPECT_EQ(space.read8(0x302127), 1);
    EXPECT_EQ(registers.reads, 1);
    space.endBurst();
    EXPECT_EQ(space.read8(0x302124), 0xFF);
}

TEST_F(AddressSpaceTest, TheRingContinuesAtItsStartInsideABurst) {
    burst(0x308FFE, {1, 2, 3, 4});
    EXPECT_EQ(memory.read8(0x308FFE), 1);
    EXPECT_EQ(memory.read8(0x308FFF), 2);
    EXPECT_EQ(memory.read8(0x308000), 3);
    EXPECT_EQ(memory.read8(0x308001), 4);
    EXPECT_EQ(memory.read8(0x309000), 0);
}

TEST_F(AddressSpaceTest, TheRegisterThatFeedsTheRingTakesWordAfterWord) {
    burst(0x302578, {1, 0, 0, 0, 2, 0, 0, 0});
    EXPECT_THAT(registers.writes,
                ElementsAre(Pair(Register::CmdbWrite, 1), Pair(Register::CmdbWrite, 2)));
}

TEST_F(AddressSpaceTest, UnknownAndReadOnlyRegistersAreComplainedAboutOnce) {
    burst(0x302FF0, {1});
    burst(0x302FF0, {2});
    burst(0x302000, {1});
    EXPECT_EQ(space.read8(0x302FF4), 0);
    EXPECT_TRUE(registers.writes.empty());
    EXPECT_THAT(registers.complaints, ElementsAre(Pair("write to unknown register", 0x302FF0),
                                                  Pair("write to read-only register", 0x302000),
                                                  Pair("read of unknown register", 0x302FF4)));
}

TEST_F(AddressSpaceTest, UnmappedMemoryReadsZeroAndTakesNothing) {
    burst(0x200000 - 1, {7}); // ROM
    burst(0x3F0000, {7});
    EXPECT_EQ(space.read8(0x3F0000), 0);
    EXPECT_EQ(registers.complaints.size(), 1U);
}

TEST_F(AddressSpaceTest, RomCannotBeWritten) {
    const std::uint32_t before = memory.read32(0x2FFFFC);
    burst(0x2FFFFC, {1, 2, 3, 4});
    EXPECT_EQ(memory.read32(0x2FFFFC), before);
}

TEST_F(AddressSpaceTest, CopiesBetweenAnyTwoPlaces) {
    burst(100, {1, 2, 3, 4, 5, 6, 7, 8});
    space.copy(0x300000, 100, 8);
    EXPECT_EQ(memory.read32(0x300000), 0x04030201U);
    EXPECT_EQ(memory.read32(0x300004), 0x08070605U);
    registers.values[Register::Clock] = 0xCAFE;
    space.copy(0, 0x302008, 4);
    EXPECT_EQ(memory.read32(0), 0xCAFEU);
}

TEST_F(AddressSpaceTest, OverlappingCopiesComeOutRight) {
    burst(0, {1, 2, 3, 4, 5, 6});
    space.copy(2, 0, 4);
    EXPECT_EQ(memory.read32(0), 0x02010201U);
    EXPECT_EQ(memory.read32(2), 0x04030201U);
}

TEST_F(AddressSpaceTest, FillsOverTheEndOfMemoryWithoutHarm) {
    space.fill(0x0FFFFE, 0xAB, 8);
    EXPECT_EQ(memory.read8(0x0FFFFF), 0xAB);
    EXPECT_EQ(memory.read8(0x100000), 0);
    space.fill(0x0FFFFF, 0x55, 0xFFFFFFFF); // all of the address space
    EXPECT_EQ(memory.read8(0), 0x55);
    EXPECT_EQ(memory.read8(0x300000), 0x55);
}

TEST_F(AddressSpaceTest, ChecksumIsTheUsualCrc32) {
    burst(0, {'1', '2', '3', '4', '5', '6', '7', '8', '9'});
    EXPECT_EQ(space.crc32(0, 9), 0xCBF43926U);
}

TEST_F(AddressSpaceTest, PeekingChangesNothing) {
    registers.values[Register::IntFlags] = 5;
    EXPECT_EQ(space.peek32(0x3020A8), 5U);
    EXPECT_EQ(registers.reads, 0);
}

} // namespace
