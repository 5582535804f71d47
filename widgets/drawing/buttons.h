#pragma once

#include "shapes.h"

#include <cstdint>

struct Gpu_Hal_Context_t;

// A flat button of the controller.
struct Button {
    int tag; // what a touch on it reads as, see FTWidget
    Point topLeft;
    uint32_t width;
    uint32_t height;
    uint32_t font;
    const char* text;
};

// A square button with room for an icon.
constexpr Button iconButton(int tag, Point topLeft) {
    return {tag, topLeft, 40, 40, 27, ""};
}

// Whether what is drawn from here on takes a tag, and so can be touched.
void setTagging(Gpu_Hal_Context_t* host, bool on);

// The button in the current button colour (Gpu_CoCmd_FgColor), with its tag.
void drawTaggedButton(Gpu_Hal_Context_t* host, const Button& button);

// The button over the tagged one, in the colour `face`: the look of a button that is held.
void drawButtonFace(Gpu_Hal_Context_t* host, const Button& button, uint32_t face);
