#include "snapshotcommands.h"

#include "displaylist.h"

#include <algorithm>
#include <array>
#include <string>

namespace controller {

namespace {

// What is stored besides the bitmap formats.
constexpr std::uint32_t formatArgb8 = 0x20;

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

void SnapshotCommands::store(std::uint32_t format, std::uint32_t destination, const Part& part) {
    const Picture& picture = m_machine.port.frameOnPanel().picture;
    const std::size_t pixelBytes = format == formatArgb8 ? 4 : 2;
    for (int row = std::max(part.y, 0); row < std::min(part.y + part.height, picture.height);
         ++row) {
        for (int column = std::max(part.x, 0);
             column < std::min(part.x + part.width, picture.width); ++column) {
            const std::uint32_t pixel = storedPixel(format, picture.at(column, row));
            const std::array<std::uint8_t, 4> bytes = {
                static_cast<std::uint8_t>(pixel), static_cast<std::uint8_t>(pixel >> 8U),
                static_cast<std::uint8_t>(pixel >> 16U), static_cast<std::uint8_t>(pixel >> 24U)};
            const std::size_t index =
                static_cast<std::size_t>(row - part.y) * static_cast<std::size_t>(part.width) +
                static_cast<std::size_t>(column - part.x);
            m_machine.bus.writeBytes(destination + static_cast<std::uint32_t>(index * pixelBytes),
                                     bytes.data(), pixelBytes);
        }
    }
}

// E1 stores ARGB4, the others what REG_SNAPFORMAT says.
void SnapshotCommands::snapshot(const Call& call) {
    const std::uint32_t format = m_machine.generation == Generation::E1
                                     ? format::Argb4
                                     : m_machine.registers[Register::SnapFormat];
    store(format, call[0], {0, 0, m_machine.panelWidth(), m_machine.panelHeight()});
}

void SnapshotCommands::snapshot2(const Call& call) {
    const std::uint32_t format = call[0];
    if (format != format::Argb4 && format != format::Rgb565 && format != formatArgb8) {
        m_machine.port.complain("SNAPSHOT2: format " + std::to_string(format) + " is not modelled");
        return;
    }
    store(format, call[1], {call.low(2), call.high(2), call.low(3), call.high(3)});
}

} // namespace controller
