#pragma once

#include "picture.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

struct Pixel {
    int x = 0;
    int y = 0;
};

// How the picture stands on the panel, as REG_ROTATE says it: mirrored left to right first, then
// turned a quarter clockwise (portrait), then turned upside down.
struct Turn {
    bool upsideDown = false;
    bool portrait = false;
    bool mirrored = false;

    static constexpr Turn of(std::uint32_t rotate) {
        return {(rotate & 1U) != 0, (rotate & 2U) != 0, (rotate & 4U) != 0};
    }
    constexpr bool isNone() const { return !upsideDown && !portrait && !mirrored; }

    // A pixel of the panel as one of the picture, and the other way round. Width and height are the
    // picture's.
    constexpr Pixel toPicture(Pixel panel, int width, int height) const {
        const int panelWidth = portrait ? height : width;
        const int panelHeight = portrait ? width : height;
        if (upsideDown) {
            panel = {panelWidth - 1 - panel.x, panelHeight - 1 - panel.y};
        }
        const Pixel upright = portrait ? Pixel{panel.y, height - 1 - panel.x} : panel;
        return {mirrored ? width - 1 - upright.x : upright.x, upright.y};
    }
    constexpr Pixel toPanel(Pixel picture, int width, int height) const {
        const int mirroredX = mirrored ? width - 1 - picture.x : picture.x;
        const Pixel upright =
            portrait ? Pixel{height - 1 - picture.y, mirroredX} : Pixel{mirroredX, picture.y};
        const int panelWidth = portrait ? height : width;
        const int panelHeight = portrait ? width : height;
        return upsideDown ? Pixel{panelWidth - 1 - upright.x, panelHeight - 1 - upright.y}
                          : upright;
    }

    // From a picture's values, row by row, to those of the panel.
    template<typename T>
    std::vector<T> turned(const std::vector<T>& values, int pictureWidth, int pictureHeight) const {
        const auto width = static_cast<std::size_t>(pictureWidth);
        const auto height = static_cast<std::size_t>(pictureHeight);
        const std::size_t panelWidth = portrait ? height : width;
        const std::size_t panelHeight = portrait ? width : height;
        std::vector<T> result(values.size());
        for (std::size_t y = 0; y < height; ++y) {
            for (std::size_t x = 0; x < width; ++x) {
                const std::size_t mirroredX = mirrored ? width - 1 - x : x;
                std::size_t panelX = portrait ? height - 1 - y : mirroredX;
                std::size_t panelY = portrait ? mirroredX : y;
                if (upsideDown) {
                    panelX = panelWidth - 1 - panelX;
                    panelY = panelHeight - 1 - panelY;
                }
                result[panelY * panelWidth + panelX] = values[y * width + x];
            }
        }
        return result;
    }
};

} // namespace controller
