#pragma once

#include "frame.h"
#include "generation.h"
#include "placedtext.h"

#include <vector>

namespace controller {

// The strings a frame shows, top to bottom, left to right. Characters of one font that follow each
// other on one line without a gap are one string; a string drawn twice at one place counts once.
std::vector<PlacedText> stringsOf(Generation generation, const Frame& frame);

} // namespace controller
