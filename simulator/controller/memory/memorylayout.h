#pragma once

#include "generation.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace controller {

// A piece of the address space.
struct Span {
    std::uint32_t base = 0;
    std::uint32_t size = 0; // 0: does not exist

    constexpr bool contains(std::uint32_t address) const {
        return address >= base && address - base < size;
    }
    constexpr std::uint32_t end() const { return base + size; }
};

// Addresses have 22 bits.
constexpr std::uint32_t addressMask = 0x3FFFFF;

constexpr std::uint32_t displayListBytes = 0x2000;
constexpr std::size_t displayListWords = displayListBytes / 4;
constexpr std::uint32_t ringBytes = 0x1000;
constexpr std::uint32_t registerBlockSize = 0x1000; // of E2 and E3; E1's is smaller

// A display list, as long as its memory.
using DisplayList = std::array<std::uint32_t, displayListWords>;

// Where the chip-identification word stands.
constexpr std::uint32_t chipIdAddress = 0x0C0000;

struct MemoryLayout {
    Span general;
    Span rom; // font ROM, the pointer to the font table included
    Span displayList;
    Span palette;
    Span registers;
    Span ring;
    Span coprocessor;        // the coprocessor's own memory
    std::uint32_t tracker;   // the first of up to five tracker words
    std::uint32_t mediaFifo; // its read, write, base and size words; 0: none
    std::uint32_t faultText; // 128 bytes; 0: none
    std::uint32_t fontTable; // the word that points at the font table
    std::uint32_t chipId;    // the word at chipIdAddress, by default
};

constexpr std::uint32_t faultTextBytes = 128;

constexpr MemoryLayout memoryLayout(Generation generation) {
    switch (generation) {
    case Generation::E1:
        return {{0x000000, 0x40000},
                {0x0BB23C, 0x100000 - 0x0BB23C},
                {0x100000, displayListBytes},
                {0x102000, 0x400},
                {0x102400, 0x400},
                {0x108000, ringBytes},
                {0x109000, 0x800},
                0x109000,
                0,
                0,
                0x0FFFFC,
                0x00010108};
    case Generation::E2:
    case Generation::E3:
        break;
    }
    const bool e3 = generation == Generation::E3;
    return {{0x000000, 0x100000},
            {0x1E0000, 0x300000 - 0x1E0000},
            {0x300000, displayListBytes},
            {0, 0},
            {0x302000, registerBlockSize},
            {0x308000, ringBytes},
            {0x309000, 0x1000},
            0x309000,
            0x309014,
            e3 ? 0x309800U : 0U,
            0x2FFFFC,
            e3 ? 0x00011508U : 0x00011308U};
}

} // namespace controller
