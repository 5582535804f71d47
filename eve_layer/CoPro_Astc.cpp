#include "CoPro_Cmds.h"
#include "displaysettings.h"
#include "generationinforce.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

constexpr std::size_t blockBytes = 16;

struct Footprint {
    uint16_t w;
    uint16_t h;
    QString format;
};

const std::array<Footprint, 14>& footprints() {
    static const std::array<Footprint, 14> all = {{
        {4, 4, QStringLiteral("__COMPRESSED_RGBA_ASTC_4x4_KHR")},
        {5, 4, QStringLiteral("__COMPRESSED_RGBA_ASTC_5x4_KHR")},
        {5, 5, QStringLiteral("__COMPRESSED_RGBA_ASTC_5x5_KHR")},
        {6, 5, QStringLiteral("__COMPRESSED_RGBA_ASTC_6x5_KHR")},
        {6, 6, QStringLiteral("__COMPRESSED_RGBA_ASTC_6x6_KHR")},
        {8, 5, QStringLiteral("__COMPRESSED_RGBA_ASTC_8x5_KHR")},
        {8, 6, QStringLiteral("__COMPRESSED_RGBA_ASTC_8x6_KHR")},
        {8, 8, QStringLiteral("__COMPRESSED_RGBA_ASTC_8x8_KHR")},
        {10, 5, QStringLiteral("__COMPRESSED_RGBA_ASTC_10x5_KHR")},
        {10, 6, QStringLiteral("__COMPRESSED_RGBA_ASTC_10x6_KHR")},
        {10, 8, QStringLiteral("__COMPRESSED_RGBA_ASTC_10x8_KHR")},
        {10, 10, QStringLiteral("__COMPRESSED_RGBA_ASTC_10x10_KHR")},
        {12, 10, QStringLiteral("__COMPRESSED_RGBA_ASTC_12x10_KHR")},
        {12, 12, QStringLiteral("__COMPRESSED_RGBA_ASTC_12x12_KHR")},
    }};
    return all;
}

} // namespace

uint32_t GET_ASTC_FORMAT(uint16_t w, uint16_t h) {
    if (!isEve3()) {
        return 0;
    }
    const auto* const found =
        std::find_if(footprints().begin(), footprints().end(),
                     [w, h](const Footprint& each) { return each.w == w && each.h == h; });
    return found == footprints().end() ? 0 : (*DisplaySettings::getInstance())[found->format];
}

void astc_tile2(uint8_t* src, uint16_t w, uint16_t h, uint32_t size, uint8_t* dst) {
    const auto copyBlock = [&dst, src](uint32_t index) {
        dst = std::copy_n(src + std::size_t{index} * blockBytes, blockBytes, dst);
    };
    for (uint32_t row = 0; row + 1 < h; row += 2) {
        const uint32_t upper = row * w;
        const uint32_t lower = upper + w;
        for (uint32_t column = 0; column < w; column += 2) {
            copyBlock(upper + column);
            copyBlock(lower + column);
            if (column + 1 < w) {
                copyBlock(lower + column + 1);
                copyBlock(upper + column + 1);
            }
        }
    }
    if (h % 2 == 0) {
        return;
    }
    // An odd last row has no partner.
    for (uint32_t block = (h - 1U) * w; block < size / blockBytes; ++block) {
        copyBlock(block);
    }
}
