#pragma once

#include <cstdint>

struct Gpu_Hal_Context_t;

// Opens `host`, takes the controller, which is taken for one of the generation in force, through
// power-down and starts it on its external clock, with one SPI lane and a system clock of 48 MHz.
// Returns when it has had `bootTimeMs` to boot.
void wakeController(Gpu_Hal_Context_t* host, uint32_t bootTimeMs);
