#pragma once

#include "buttons.h"

#include <cstdint>

struct Gpu_Hal_Context_t;

// The row of icon buttons along the top edge of the two measurement screens.

constexpr Button runButton = iconButton(2, {319, 8});         // starts and stops a run
constexpr Button otherScreenButton = iconButton(3, {374, 8}); // to the other measurement screen
constexpr Button optionsButton = iconButton(4, {429, 8});

void drawOptionsIcon(Gpu_Hal_Context_t* host);

// The start triangle on a run button whose face has the colour `face`. Leaves the colour at ink.
void drawStartIcon(Gpu_Hal_Context_t* host, uint32_t face);

// The run button as it looks while held, with the start triangle unless a run is `started`.
void drawHeldRunButton(Gpu_Hal_Context_t* host, bool started);

void drawHeldOptionsButton(Gpu_Hal_Context_t* host);

// The stop square, in place of the start triangle, on a run button that is `held` or not.
void drawStopIcon(Gpu_Hal_Context_t* host, bool held);
