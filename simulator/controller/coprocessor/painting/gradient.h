#pragma once

#include "fontrom.h"
#include "generation.h"
#include "painter.h"

#include <cstdint>

namespace controller {

struct Gradient {
    int x0 = 0; // pixels; from here the colour is color0 ...
    int y0 = 0;
    std::uint32_t color0 = 0; // 0xRRGGBB, with alpha 0xAARRGGBB
    int x1 = 0;               // ... and from here on color1
    int y1 = 0;
    std::uint32_t color1 = 0;
};

// What gradients are drawn on and with.
struct GradientCanvas {
    Generation generation = Generation::E1;
    RomRamp ramp;
    std::uint32_t scratchHandle = 0; // of the bitmap
    int width = 0;                   // of the panel, pixels
    int height = 0;
};

// Words that fill the scissor area with a gradient.
void appendGradient(Words& words, const GradientCanvas& canvas, const Gradient& gradient);

// The same with colours whose alpha runs along, blended over what is there. E3. The pixels' own
// alpha is used up.
void appendAlphaGradient(Words& words, const GradientCanvas& canvas, const Gradient& gradient);

} // namespace controller
