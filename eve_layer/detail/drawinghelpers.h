#pragma once

#include <cstdint>

// Arithmetic of the start-up logo, whose design is 800 units wide.

// 1/16 pixels per design unit, times 4096: (panel width << 16) / 800. Set by the logo.
extern int32_t scaling;

// Design units to 1/16 pixel.
int dc(int16_t v);

// Moves from `from` to `to`, fast at first and slow at the end (cubic), as the low 16 bits of `t`
// run from 0 to 0xFFFF.
int tween(int t, int from, int to);
