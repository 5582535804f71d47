#pragma once

#include "painter.h"

#include <cstdint>

namespace controller {

// What SPINNER draws, in the current colour.
//
// The unit is the radius of the circle the animation fills: with scale 0 an eighth of the panel's
// height (the whole is a quarter of the panel high), with scale 1 a quarter (half the panel), with
// scale 2 half (the full panel).
//
// Style 0: eight dots on a circle of 3/4 unit; a swell of their size runs around it.
// Style 1: five dots on a horizontal line; the swell runs along it.
// Style 2: a clock hand of 7/8 unit that turns.
// Style 3: two dots of 1/5 unit, opposite each other on a circle of 3/5 unit.
//
// Every style turns clockwise, and repeats after `spinnerPeriod` frames.
struct Spinner {
    int x = 0; // centre, pixels
    int y = 0;
    unsigned style = 0;
    unsigned scale = 0;
};

constexpr std::uint32_t spinnerPeriod = 90;

// Words for the frame that is the `frame`th since the animation began.
void appendSpinner(Words& words, Generation generation, int panelHeight, const Spinner& spinner,
                   std::uint32_t frame);

} // namespace controller
