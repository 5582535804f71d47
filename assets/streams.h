#pragma once

#include <array>

// The program's pictures as the display controller takes them: zlib streams that its coprocessor
// inflates into general memory. Generated from the *.png beside this file at build time.
namespace assets {

// Start-up logo, 470 x 85 pixels ARGB4: 79 900 bytes inflated.
extern const std::array<unsigned char, 6025> logo;

// The thirteen L4 pieces of the logo animation, one after another in the order and sizes of its
// element table, white ink: 70 815 bytes inflated.
extern const std::array<unsigned char, 6224> logoPieces;

// d/dt, 18 x 28 pixels ARGB4: 1008 bytes inflated.
extern const std::array<unsigned char, 212> derivativeIcon;

// Integral dt, 24 x 36 pixels ARGB4: 1728 bytes inflated.
extern const std::array<unsigned char, 274> integralIcon;

} // namespace assets
