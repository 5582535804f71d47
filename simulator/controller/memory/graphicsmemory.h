#pragma once

#include "pages.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace controller {

// What the graphics engine can address: a read-only view of the controller's memories. The
// memories belong to someone else and outlive the view.
class GraphicsMemory {
public:
    struct Region {
        std::uint32_t base = 0;
        const std::uint8_t* data = nullptr;
        std::size_t size = 0;
        // For each page the moment() of its last change. Null when nobody knows: any time.
        const std::uint64_t* changes = nullptr;
    };
    using Reads = std::array<PageSet, 3>; // which pages have been read, of each region

    GraphicsMemory() = default;
    // E1: general memory, ROM, palette memory. E2, E3: general memory, ROM (palette left empty).
    // `moment`: how many changes there have been.
    GraphicsMemory(Region general, Region rom, Region palette, std::uint64_t moment = 0)
        : m_regions{general, rom, palette}, m_moment(moment) {}

    std::uint64_t moment() const { return m_moment; }
    // What is read through this view is added to `reads` from now on.
    void noteReads(Reads& reads) { m_reads = &reads; }
    // Whether any of the pages has been changed since a moment, as far as one can know.
    bool hasChanged(const Reads& reads, std::uint64_t since) const;

    // The `length` bytes at `address`, or null when any of them is not mapped.
    const std::uint8_t* bytes(std::uint32_t address, std::size_t length) const {
        for (std::size_t i = 0; i < m_regions.size(); ++i) {
            const Region& region = m_regions[i];
            if (address >= region.base && address - region.base < region.size &&
                length <= region.size - (address - region.base)) {
                if (m_reads != nullptr) {
                    (*m_reads)[i].add(address - region.base, length);
                }
                return region.data + (address - region.base);
            }
        }
        return nullptr;
    }

private:
    std::array<Region, 3> m_regions{};
    std::uint64_t m_moment = 0;
    Reads* m_reads = nullptr;
};

inline bool GraphicsMemory::hasChanged(const Reads& reads, std::uint64_t since) const {
    for (std::size_t i = 0; i < m_regions.size(); ++i) {
        const std::uint64_t* changes = m_regions[i].changes;
        if (reads[i].hasAny(
                [&](std::size_t page) { return changes == nullptr || changes[page] > since; })) {
            return true;
        }
    }
    return false;
}

} // namespace controller
