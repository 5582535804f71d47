#pragma once

#include <cstddef>
#include <cstdint>

namespace controller {

// The chip's ROM as it stands in the address space, the word that points at the font table
// included. The data belongs to someone else.
struct RomImage {
    std::uint32_t base = 0;
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
};

} // namespace controller
