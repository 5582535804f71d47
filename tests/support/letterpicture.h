#pragma once

#include "graphicsengine.h"
#include "picture.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// Pictures as rows of letters, one letter a pixel, so that an expected picture can be written by
// hand and a wrong one is seen at a glance in the test's output.
namespace letterpicture {

// The colour (0xRRGGBB) or tag that each letter stands for; what no letter stands for becomes '?'.
using Legend = std::map<std::uint32_t, char>;

// A row a line, each ended by a newline.
std::string colors(const controller::Picture& picture, const Legend& legend);
std::string tags(const controller::Frame& frame, const Legend& legend);

// How bright the green of each pixel is: '.' for none, '1' to '9' for about as many tenths, '#'
// for full.
std::string brightness(const controller::Picture& picture);

// The expected picture in the same form.
std::string rows(const std::vector<std::string>& lines);

} // namespace letterpicture
