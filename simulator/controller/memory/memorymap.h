#pragma once

#include "generation.h"
#include "graphicsmemory.h"
#include "memorylayout.h"
#include "romimage.h"
#include "zeroedbytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

// Everything in the address space that is plain memory: all of it but the registers.
//
// RAM_DL is the buffer that is being written; exchangeDisplayLists() is the swap. Multi-byte
// values are little-endian. Nothing here has side effects.
class MemoryMap {
public:
    // `rom` stands where the generation has its ROM, and outlives the map.
    MemoryMap(Generation generation, const RomImage& rom);
    MemoryMap(const MemoryMap&) = delete;
    MemoryMap& operator=(const MemoryMap&) = delete;

    // All RAM to 0, as after power-on. Costs as much as has been written since the last time.
    void clear();

    const MemoryLayout& layout() const { return m_layout; }

    // What is not mapped reads 0; writes there, and to ROM, do nothing.
    std::uint8_t read8(std::uint32_t address) const;
    std::uint32_t read32(std::uint32_t address) const; // any alignment
    void write8(std::uint32_t address, std::uint8_t value);
    void write32(std::uint32_t address, std::uint32_t value);
    bool isMapped(std::uint32_t address) const { return find(address) != nullptr; }
    // The chip-identification word, which in E1 stands in ROM.
    void putChipId(std::uint32_t word);

    // What lies at `address` and on: memory in one piece, or a gap where nothing is mapped.
    struct Stretch {
        std::uint8_t* bytes = nullptr; // null: nothing there
        bool writable = false;
        std::uint32_t length = 0; // at least 1
    };
    Stretch stretchAt(std::uint32_t address) const;
    // To be called by whoever wrote `length` bytes at `address` through a Stretch.
    void noteChanges(std::uint32_t address, std::uint32_t length);

    std::uint32_t ringWord(std::uint32_t offset) const;
    void setRingWord(std::uint32_t offset, std::uint32_t word);
    std::uint32_t listWord(std::size_t index) const; // of the list being written
    void setListWord(std::size_t index, std::uint32_t word);
    void exchangeDisplayLists();
    // The words of the list that the last exchange put away.
    void readShownList(DisplayList& words) const;

    // The memory that pictures are made from, as it is now.
    GraphicsMemory graphicsView() const;

private:
    struct Region {
        Span span;
        std::uint8_t* bytes = nullptr;
        bool writable = true;
        std::uint64_t* changes = nullptr; // of each page; null: the graphics engine can't read it
    };

    const Region* find(std::uint32_t address) const;
    void noteChanges(const Region& region, std::uint32_t offset, std::uint32_t length);
    void selectDisplayList();

    void clear(const Region& region);

    MemoryLayout m_layout;
    ZeroedBytes m_general;
    std::vector<std::uint8_t> m_rom; // empty where the image itself serves
    std::vector<std::uint8_t> m_palette;
    std::array<std::vector<std::uint8_t>, 2> m_displayLists;
    std::size_t m_written = 0; // which of them is RAM_DL
    std::vector<std::uint8_t> m_ring;
    std::vector<std::uint8_t> m_coprocessor;
    std::array<Region, 6> m_regions;
    std::array<std::vector<std::uint64_t>, 3> m_pageChanges; // of general memory, ROM and palette
    std::uint64_t m_moment = 0;                              // counts their changes
    std::uint64_t m_cleared = 0;                             // the moment of the last clear()
};

} // namespace controller
