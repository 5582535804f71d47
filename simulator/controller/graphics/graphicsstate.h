#pragma once

#include "displaylist.h"
#include "generation.h"
#include "memorylayout.h"

#include <array>
#include <cstdint>
#include <tuple>

namespace controller {

// Scissor rectangle in pixels.
struct Scissor {
    int x = 0;
    int y = 0;
    int width = 2048;
    int height = 2048;
};

// Maps a bitmap's window to its texels: s = a*u + b*v + c, t = d*u + e*v + f. The factors a, b, d
// and e are in 1/32768, which holds both notations of the words (8.8 and 1.15); c and f in 1/256.
struct BitmapTransform {
    std::int32_t a = 32768;
    std::int32_t b = 0;
    std::int32_t c = 0;
    std::int32_t d = 0;
    std::int32_t e = 32768;
    std::int32_t f = 0;
};

// Everything that SAVE_CONTEXT saves, with the values it has at the start of every list.
struct GraphicsState {
    std::uint32_t color = 0xFFFFFFFF; // 0xAARRGGBB
    std::uint32_t clearColor = 0;     // 0xAARRGGBB
    std::uint8_t clearStencil = 0;
    std::uint8_t clearTag = 0;

    std::uint8_t tag = 255;
    bool tagging = true;

    int pointSize = 16; // radius, 1/16 pixel
    int lineWidth = 16; // half the width, 1/16 pixel

    std::uint32_t alphaFunction = test::Always;
    std::uint8_t alphaReference = 0;

    std::uint32_t stencilFunction = test::Always;
    std::uint8_t stencilReference = 0;
    std::uint8_t stencilCompareMask = 255;
    std::uint32_t stencilFail = stencilop::Keep;
    std::uint32_t stencilPass = stencilop::Keep;
    std::uint8_t stencilWriteMask = 255;

    std::uint32_t blendSource = blend::SrcAlpha;
    std::uint32_t blendDestination = blend::OneMinusSrcAlpha;
    std::uint32_t colorMask = 0xFFFFFFFF; // 0xFF in each channel that may be written

    Scissor scissor;

    std::uint8_t handle = 0;
    std::uint8_t cell = 0;
    BitmapTransform transform;
    std::uint32_t paletteSource = 0;

    int vertexFraction = 4; // fraction bits of VERTEX2F
    int translateX = 0;     // 1/16 pixel
    int translateY = 0;
};

inline GraphicsState initialState(Generation generation) {
    GraphicsState state;
    if (generation == Generation::E1) {
        state.scissor = {0, 0, 512, 512};
    }
    state.paletteSource = memoryLayout(generation).palette.base; // 0 where there is none
    return state;
}

// What belongs to a bitmap handle, as the words give it. The high parts come in words of their
// own and stay 0 in E1.
struct BitmapHandle {
    std::uint32_t source = 0;
    std::uint32_t format = 0;
    std::uint32_t extendedFormat = 0; // counts when `format` is external
    std::uint32_t stride = 0;         // bits 0 to 9
    std::uint32_t strideHigh = 0;     // bits 10 to 11
    std::uint32_t layoutHeight = 0;   // bits 0 to 8
    std::uint32_t layoutHeightHigh = 0;
    bool bilinear = false;
    bool repeatX = false;
    bool repeatY = false;
    std::uint32_t width = 0; // bits 0 to 8
    std::uint32_t widthHigh = 0;
    std::uint32_t height = 0; // bits 0 to 8
    std::uint32_t heightHigh = 0;
    // Where red, green, blue and alpha come from.
    std::array<std::uint32_t, 4> swizzle{swizzle::Red, swizzle::Green, swizzle::Blue,
                                         swizzle::Alpha};

    friend bool operator==(const BitmapHandle& a, const BitmapHandle& b) {
        const auto all = [](const BitmapHandle& handle) {
            return std::tie(handle.source, handle.format, handle.extendedFormat, handle.stride,
                            handle.strideHigh, handle.layoutHeight, handle.layoutHeightHigh,
                            handle.bilinear, handle.repeatX, handle.repeatY, handle.width,
                            handle.widthHigh, handle.height, handle.heightHigh, handle.swizzle);
        };
        return all(a) == all(b);
    }
};

constexpr std::size_t bitmapHandles = 32;
using BitmapHandles = std::array<BitmapHandle, bitmapHandles>;

} // namespace controller
