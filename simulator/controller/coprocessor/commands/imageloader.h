#pragma once

#include "image.h"
#include "machine.h"

#include <cstdint>

namespace controller {

// What LOADIMAGE makes of a file: pixels in memory, and the words that show them.
class ImageLoader {
public:
    // Options of LOADIMAGE.
    static constexpr std::uint32_t mono = 1;
    static constexpr std::uint32_t noList = 2;
    static constexpr std::uint32_t fullScreen = 8;
    static constexpr std::uint32_t fromMediaFifo = 16;
    static constexpr std::uint32_t fromFlash = 64;

    // The last image: where it was put, and its size in pixels. All 0 before the first.
    struct Properties {
        std::uint32_t address = 0;
        std::uint32_t width = 0;
        std::uint32_t height = 0;
    };

    explicit ImageLoader(Machine& machine) : m_machine(machine) {}

    // Unpacks a file; a fault when that cannot be. Returns the address behind the data.
    std::uint32_t load(const std::vector<std::uint8_t>& file, std::uint32_t address,
                       std::uint32_t options);
    const Properties& properties() const { return m_properties; }
    void reset() { m_properties = {}; }

private:
    Image unpack(const std::vector<std::uint8_t>& file, std::uint32_t options) const;
    void show(const Image& image, std::uint32_t address, bool full);

    Machine& m_machine;
    Properties m_properties;
};

} // namespace controller
