#pragma once

#include "picture.h"

#include <cstdint>
#include <string>
#include <vector>

namespace controller {

// A bitmap vertex drawn from a ROM font: what the panel says, for whoever wants to read it.
struct DrawnCharacter {
    int x = 0; // left edge, pixels
    int y = 0; // top edge, pixels
    std::uint8_t handle = 0;
    std::uint8_t cell = 0; // the character code
};

// What scanning one display list gives.
struct Frame {
    Picture picture;
    std::vector<std::uint8_t> tags; // one per pixel, laid out like the picture
    std::vector<DrawnCharacter> characters;
    std::vector<std::string> complaints; // malformed or unknown words, one line each
    std::int64_t work = 0;               // what drawing it costs, in about nanoseconds
};

} // namespace controller
