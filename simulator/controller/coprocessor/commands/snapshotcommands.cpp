#include "snapshotcommands.h"

#include "displaylist.h"

#include <algorithm>
#include <string>
#include <vector>

namespace controller {

namespace {

// What is stored besides the bitmap formats.
constexpr std::uint32_t formatArgb8 = 0x20;
// What drawing and storing a pixel costs.
constexpr std::int64_t pixelWork = 16;

// A pixel, 0xFFRRGGBB, as it is stored: bytes, low one first.
std::uint32_t storedPixel(std::uint32_t format, std::uint32_t pixel) {
    const std::uint32_t r = pixel >> 16U & 0xFFU;
    const std::uint32_t g = pixel >> 8U & 0xFFU;
    const std::uint32_t b = pixel & 0xFFU;
    switch (format) {
    case format::Argb4:
        return 0xF000U | r >> 4U << 8U | g >> 4U << 4U | b >> 4U;
    case format::Rgb565:
        return r >> 3U << 11U | g >> 2U << 5U | b >> 3U;
    default:
        return pixel | 0xFF000000U;
    }
}

} // namespace

void SnapshotCommands::addTo(CommandSet& set) {
    set.add(Command::Snapshot, *this, &SnapshotCommands::snapshot);
    set.add(Command::Snapshot2, *this, &SnapshotCommands::snapshot2);
}

// Stores what fits general memory and no more: behind it stand registers and the ring.
void SnapshotCommands::store(const Call& call, std::uint32_t format, std::uint32_t destination,
                             const Part& part) {
    const Picture& picture = m_machine.port.pictureShown().picture;
    const std::uint64_t pixelBytes = format == formatArgb8 ? 4 : 2;
    const std::uint64_t memoryBytes = m_machine.memory.layout().general.size;
    const int left = std::max(part.x, 0);
    const int right = std::min(part.x + part.width, picture.width);
    const int bottom = std::min(part.y + part.height, picture.height);
    bool fits = true;
    for (int row = std::max(part.y, 0); row < bottom && left < right && fits; ++row) {
        const std::uint64_t index =
            static_cast<std::uint64_t>(row - part.y) * static_cast<std::uint64_t>(part.width) +
            static_cast<std::uint64_t>(left - part.x);
        const std::uint64_t address = (destination & addressMask) + index * pixelBytes;
        std::vector<std::uint8_t> bytes;
        for (int column = left; column < right; ++column) {
            const std::uint32_t pixel = storedPixel(format, picture.at(column, row));
            for (std::uint64_t i = 0; i < pixelBytes; ++i) {
                bytes.push_back(static_cast<std::uint8_t>(pixel >> 8 * i));
            }
        }
        m_machine.budget.spend(pixelWork * (right - left));
        const std::uint64_t room = address < memoryBytes ? memoryBytes - address : 0;
        fits = bytes.size() <= room;
        bytes.resize(std::min<std::uint64_t>(bytes.size(), room));
        m_machine.bus.writeBytes(static_cast<std::uint32_t>(address), bytes.data(), bytes.size());
    }
    if (!fits) {
        m_machine.port.complain(std::string(call.name()) +
                                ": the picture reaches beyond general memory");
    }
}

// E1 stores ARGB4, the others what REG_SNAPFORMAT says.
void SnapshotCommands::snapshot(const Call& call) {
    const std::uint32_t format = m_machine.generation == Generation::E1
                                     ? format::Argb4
                                     : m_machine.registers[Register::SnapFormat];
    store(call, format, call[0], {0, 0, m_machine.pictureWidth(), m_machine.pictureHeight()});
}

void SnapshotCommands::snapshot2(const Call& call) {
    const std::uint32_t format = call[0];
    if (format != format::Argb4 && format != format::Rgb565 && format != formatArgb8) {
        m_machine.port.complain("SNAPSHOT2: format " + std::to_string(format) + " is not modelled");
        return;
    }
    store(call, format, call[1], {call.low(2), call.high(2), call.low(3), call.high(3)});
}

} // namespace controller
