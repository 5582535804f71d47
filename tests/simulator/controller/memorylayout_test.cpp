#include "memorylayout.h"
#include "memorymap.h"

#include <gtest/gtest.h>

namespace {

using namespace controller;

// The memory map of the documentation, by literals.
struct Region {
    std::uint32_t base;
    std::uint32_t size;
    bool writable;
};

void expectRegions(Generation generation, const std::vector<Region>& regions) {
    MemoryMap memory(generation, RomImage{});
    for (const Region& region : regions) {
        for (const std::uint32_t address : {region.base, region.base + region.size - 1}) {
            EXPECT_TRUE(memory.isMapped(address)) << std::hex << address;
            memory.write8(address, 0x5A);
            EXPECT_EQ(memory.read8(address), region.writable ? 0x5A : 0) << std::hex << address;
        }
    }
}

TEST(MemoryLayout, OfTheFirstGeneration) {
    expectRegions(Generation::E1, {{0x000000, 256 * 1024, true},
                                   {0x0BB23C, 0x0FFFFC - 0x0BB23C, false},
                                   {0x100000, 8192, true},
                                   {0x102000, 1024, true},
                                   {0x108000, 4096, true},
                                   {0x109000, 4, true}});
    const MemoryMap memory(Generation::E1, RomImage{});
    EXPECT_FALSE(memory.isMapped(0x40000));
    EXPECT_FALSE(memory.isMapped(0x109800));
    EXPECT_EQ(memory.layout().fontTable, 0x0FFFFCU);
    EXPECT_EQ(memory.layout().chipId, 0x00010108U);
    EXPECT_EQ(memory.layout().registers.base, 0x102400U);
}

TEST(MemoryLayout, OfTheLaterGenerations) {
    for (const Generation generation : {Generation::E2, Generation::E3}) {
        expectRegions(generation, {{0x000000, 1024 * 1024, true},
                                   {0x1E0000, 0x2FFFFC - 0x1E0000, false},
                                   {0x300000, 8192, true},
                                   {0x308000, 4096, true},
                                   {0x309000, 0x34, true}});
        const MemoryMap memory(generation, RomImage{});
        EXPECT_FALSE(memory.isMapped(0x100000));
        EXPECT_FALSE(memory.isMapped(0x102000)) << "no palette memory";
        EXPECT_EQ(memory.layout().fontTable, 0x2FFFFCU);
        EXPECT_EQ(memory.layout().registers.base, 0x302000U);
        EXPECT_EQ(memory.layout().registers.size, 4096U);
    }
    EXPECT_EQ(memoryLayout(Generation::E2).chipId, 0x00011308U);
    EXPECT_EQ(memoryLayout(Generation::E3).chipId, 0x00011508U);
    EXPECT_EQ(memoryLayout(Generation::E3).faultText, 0x309800U);
    EXPECT_EQ(memoryLayout(Generation::E2).faultText, 0U) << "only the third says why";
}

} // namespace
