#include "texels.h"

namespace controller {

namespace {

std::uint32_t bytesPerPaletteEntry(std::uint32_t format) {
    return format == format::Paletted565 || format == format::Paletted4444 ? 2 : 4;
}

std::uint32_t paletteEntry(std::uint32_t format, const std::uint8_t* bytes) {
    switch (format) {
    case format::Paletted565:
        return fromRgb565(littleEndian16(bytes));
    case format::Paletted4444:
        return fromArgb4(littleEndian16(bytes));
    default: // blue, green, red, alpha
        return littleEndian16(bytes) | littleEndian16(bytes + 2) << 16;
    }
}

} // namespace

std::uint32_t bitsPerTexel(Generation generation, std::uint32_t format) {
    switch (format) {
    case format::L1:
        return 1;
    case format::L4:
        return 4;
    case format::L8:
    case format::Rgb332:
    case format::Argb2:
        return 8;
    case format::Argb1555:
    case format::Argb4:
    case format::Rgb565:
        return 16;
    case format::Paletted:
        return generation == Generation::E1 ? 8 : 0;
    case format::Paletted565:
    case format::Paletted4444:
    case format::Paletted8:
        return generation == Generation::E1 ? 0 : 8;
    case format::L2:
        return generation == Generation::E1 ? 0 : 2;
    default:
        return 0;
    }
}

bool isPaletted(std::uint32_t format) {
    return format == format::Paletted || format == format::Paletted565 ||
           format == format::Paletted4444 || format == format::Paletted8;
}

bool readPalette(const GraphicsMemory& memory, std::uint32_t format, std::uint32_t address,
                 Palette& palette) {
    const std::uint32_t size = bytesPerPaletteEntry(format);
    bool complete = true;
    for (std::uint32_t& entry : palette) {
        const std::uint8_t* bytes = memory.bytes(address, size);
        entry = bytes == nullptr ? 0 : paletteEntry(format, bytes);
        complete = complete && bytes != nullptr;
        address += size;
    }
    return complete;
}

} // namespace controller
