#pragma once

#include <cstdint>

struct Gpu_Hal_Context_t;

// Opens `host`, takes the controller through power-down and starts it on its external clock, with a
// system clock of 48 MHz and, unless it is taken for an EVE_1, which has no choice, one SPI lane.
// Returns when it has had `bootTimeMs` to boot.
void wakeController(Gpu_Hal_Context_t* host, bool asEve1, uint32_t bootTimeMs);
