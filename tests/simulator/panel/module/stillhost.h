#pragma once

#include "displaymodule.h"
#include "host.h"

#include <cstdint>
#include <vector>

namespace panel {

// A host on a display module's wires that lets its time stand still, but for the frames that it
// asks for.
class StillHost {
public:
    using Bytes = std::vector<std::uint8_t>;
    using Words = std::vector<std::uint32_t>;

    // E3, with 480 x 272 pixels being scanned.
    StillHost() {
        module.powerDown(true);
        module.chipSelect(true);
        send({0, 0, 0}); // ACTIVE
        module.stepFrame();
        module.stepFrame();
        for (const auto& [address, value] : Timings{{0x30202C, 548},
                                                    {0x302034, 480},
                                                    {0x302040, 292},
                                                    {0x302048, 272},
                                                    {0x302070, 5}}) {
            write(address, {value});
        }
    }

    void send(const Bytes& bytes) {
        module.chipSelect(false);
        module.transfer(bytes.data(), nullptr, bytes.size());
        module.chipSelect(true);
    }

    void write(std::uint32_t address, const Words& words) {
        Bytes bytes{static_cast<std::uint8_t>(0x80 | address >> 16),
                    static_cast<std::uint8_t>(address >> 8), static_cast<std::uint8_t>(address)};
        for (const std::uint32_t word : words) {
            for (int shift = 0; shift < 32; shift += 8) {
                bytes.push_back(static_cast<std::uint8_t>(word >> shift));
            }
        }
        send(bytes);
    }

    // Puts words into the ring, in one transaction, and publishes them.
    void command(const Words& words) {
        write(0x308000 + m_ring, words);
        m_ring = (m_ring + 4 * static_cast<std::uint32_t>(words.size())) % 4096;
        write(0x3020FC, {m_ring});
    }

    // Long enough for a new list to be shown.
    void frames(int count = 2) {
        for (int i = 0; i < count; ++i) {
            module.stepFrame();
        }
    }

    DisplayModule module{controller::Generation::E3};

private:
    using Timings = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

    std::uint32_t m_ring = 0;
};

} // namespace panel
