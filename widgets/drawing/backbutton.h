#pragma once

#include "buttons.h"

struct Gpu_Hal_Context_t;

// The button in the top left corner that leaves a screen.
constexpr Button backButton = iconButton(1, {9, 8});

// The arrow on it. Leaves the line width at its own, thicker than the default.
void drawBackArrow(Gpu_Hal_Context_t* host);

// Button and arrow as they look while held.
void drawHeldBackButton(Gpu_Hal_Context_t* host);
