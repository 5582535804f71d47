#pragma once

#include "font.h"
#include "generation.h"
#include "position.h"

#include <cstdint>
#include <string>
#include <vector>

namespace controller {

// Display-list words in the making.
using Words = std::vector<std::uint32_t>;

constexpr std::uint32_t white = 0xFFFFFF; // red, green, blue

// A position in 1/16 pixel.
struct Point16 {
    int x = 0;
    int y = 0;
};

// All of these in 1/16 pixel.
struct Disc {
    Point16 center;
    int radius = 0;
};

struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    static constexpr Box ofPixels(int x, int y, int width, int height) {
        return {x * subpixels, y * subpixels, width * subpixels, height * subpixels};
    }
    constexpr Box inset(int left, int top, int right, int bottom) const {
        return {x + left, y + top, width - left - right, height - top - bottom};
    }
    constexpr Box inset(int all) const { return inset(all, all, all, all); }
};

namespace option {
constexpr unsigned flat = 0x100;
constexpr unsigned isSigned = 0x100;
constexpr unsigned centerX = 0x200;
constexpr unsigned centerY = 0x400;
constexpr unsigned center = centerX | centerY;
constexpr unsigned rightX = 0x800;
constexpr unsigned noBack = 0x1000;
constexpr unsigned format = 0x1000; // E3, of TEXT, BUTTON, TOGGLE
constexpr unsigned noTicks = 0x2000;
constexpr unsigned fill = 0x2000;    // E3, of TEXT
constexpr unsigned noHands = 0x4000; // hours and minutes; a gauge's pointer
constexpr unsigned noSeconds = 0x8000;
} // namespace option

// Where text stands: relative to (x, y) in pixels, as CENTERX, CENTERY and RIGHTX among `options`
// say.
struct TextPlace {
    int x = 0;
    int y = 0;
    unsigned options = 0;
};

// Composes shapes from display-list words, between SAVE_CONTEXT and RESTORE_CONTEXT, so that the
// list's graphics state is the same afterwards as before. What it does not set is the caller's:
// the colour above all.
class Painter {
public:
    Painter(Words& words, Generation generation);
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    void color(std::uint32_t rgb);
    void alpha(std::uint32_t value);
    // What is drawn next carries this tag, whatever the caller's tag mask.
    void tag(std::uint32_t value);

    // A filled rectangle with round corners; the radius is cut to what fits.
    void box(const Box& outer, int radius);
    void disc(const Disc& disc);
    void line(Point16 from, Point16 to, int halfWidth);
    void text(const Font& font, const TextPlace& place, const std::string& text);

private:
    void put(std::uint32_t word) { m_words.push_back(word); }
    void vertex(Point16 point);
    void character(const Font& font, int x, int y, std::uint32_t cell);

    Words& m_words;
    Generation m_generation;
};

} // namespace controller
