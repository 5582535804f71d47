#pragma once

#include <string>

namespace controller {

// A string on the panel and the box, in pixels, of what is not blank in it.
struct PlacedText {
    std::string text; // with its blanks
    int x = 0;        // left edge
    int y = 0;        // top edge
    int width = 0;    // 0 where it is of a font that a program has put into a handle of its own
    int height = 0;
};

} // namespace controller
