#pragma once

#include "fontrom.h"
#include "generation.h"
#include "painter.h"

#include <cstdint>

namespace controller {

struct Gradient {
    int x0 = 0; // pixels; from here the colour is rgb0 ...
    int y0 = 0;
    std::uint32_t rgb0 = 0;
    int x1 = 0; // ... and from here on rgb1
    int y1 = 0;
    std::uint32_t rgb1 = 0;
};

// Words that fill the scissor area of a panel of `width` x `height` pixels with a gradient, drawn
// through bitmap handle `scratchHandle`.
void appendGradient(Words& words, Generation generation, const RomRamp& ramp,
                    std::uint32_t scratchHandle, int width, int height, const Gradient& gradient);

} // namespace controller
