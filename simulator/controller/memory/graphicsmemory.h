#pragma once

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
    };

    GraphicsMemory() = default;
    // E1: general memory, ROM, palette memory. E2, E3: general memory, ROM (palette left empty).
    GraphicsMemory(Region general, Region rom, Region palette) : m_regions{general, rom, palette} {}

    // The `length` bytes at `address`, or null when any of them is not mapped.
    const std::uint8_t* bytes(std::uint32_t address, std::size_t length) const {
        for (const Region& region : m_regions) {
            if (address >= region.base && address - region.base < region.size &&
                length <= region.size - (address - region.base)) {
                return region.data + (address - region.base);
            }
        }
        return nullptr;
    }

private:
    std::array<Region, 3> m_regions{};
};

} // namespace controller
