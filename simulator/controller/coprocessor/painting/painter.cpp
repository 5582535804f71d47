#include "painter.h"

#include "dlwords.h"
#include "fixedmath.h"

#include <algorithm>

namespace controller {

namespace {

// VERTEX2F takes 15 signed bits, VERTEX2II 9 unsigned ones.
constexpr int vertexLimit = 0x3FFF;
constexpr int plainVertexLimit = 0x1FF;
constexpr int lineWidthLimit = 0xFFF;
constexpr int pointSizeLimit = 0x1FFF;
// RECTS and lines are never drawn with less.
constexpr int smallestWidth = 1;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += c;
        }
    }
    return lines;
}

} // namespace

Painter::Painter(Words& words, Generation generation) : m_words(words), m_generation(generation) {
    put(dl::saveContext());
    if (m_generation != Generation::E1) {
        put(dl::vertexFormat(4));
    }
}

Painter::~Painter() {
    put(dl::restoreContext());
}

void Painter::color(std::uint32_t rgb) {
    put(dl::colorRgb(rgb));
}

void Painter::alpha(std::uint32_t value) {
    put(dl::colorA(value));
}

void Painter::tag(std::uint32_t value) {
    put(dl::tagMask(1));
    put(dl::tag(value));
}

void Painter::vertex(Point16 point) {
    put(dl::vertex2f(clampTo(point.x, -vertexLimit, vertexLimit),
                     clampTo(point.y, -vertexLimit, vertexLimit)));
}

void Painter::box(const Box& outer, int radius) {
    if (outer.width <= 0 || outer.height <= 0) {
        return;
    }
    const int half = std::min(outer.width, outer.height) / 2;
    const int width = clampTo(std::min(radius, half), smallestWidth, lineWidthLimit);
    put(dl::lineWidth(static_cast<std::uint32_t>(width)));
    put(dl::begin(primitive::Rects));
    vertex({outer.x + width, outer.y + width});
    vertex({outer.x + outer.width - width, outer.y + outer.height - width});
    put(dl::end());
}

void Painter::disc(const Disc& disc) {
    put(dl::pointSize(static_cast<std::uint32_t>(clampTo(disc.radius, 0, pointSizeLimit))));
    put(dl::begin(primitive::Points));
    vertex(disc.center);
    put(dl::end());
}

void Painter::line(Point16 from, Point16 to, int halfWidth) {
    put(dl::lineWidth(static_cast<std::uint32_t>(clampTo(halfWidth, 0, lineWidthLimit))));
    put(dl::begin(primitive::Lines));
    vertex(from);
    vertex(to);
    put(dl::end());
}

void Painter::character(const Font& font, int x, int y, std::uint32_t cell) {
    if (x >= 0 && x <= plainVertexLimit && y >= 0 && y <= plainVertexLimit) {
        put(dl::vertex2ii(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), font.handle,
                          cell));
        return;
    }
    const int limit = vertexLimit / subpixels;
    if (x < -limit || x > limit || y < -limit || y > limit) {
        return; // beyond what a vertex can say, and far beyond the panel
    }
    put(dl::bitmapHandle(font.handle));
    put(dl::cell(cell));
    vertex({x * subpixels, y * subpixels});
}

void Painter::text(const Font& font, const TextPlace& place, const std::string& text) {
    const std::vector<std::string> lines = linesOf(text);
    const int height = static_cast<int>(font.height);
    int y = place.y;
    if (place.options & option::centerY) {
        y -= height * static_cast<int>(lines.size()) / 2;
    }
    for (std::uint32_t word : font.setup) {
        put(word);
    }
    put(dl::begin(primitive::Bitmaps));
    for (const std::string& line : lines) {
        int position = place.x;
        if (place.options & option::rightX) {
            position -= font.widthOf(line);
        } else if (place.options & option::centerX) {
            position -= font.widthOf(line) / 2;
        }
        for (const char c : line) {
            const auto code = static_cast<unsigned char>(c);
            const int advance = font.widthOf(code);
            if (advance > 0) {
                character(font, position, y, code - font.firstCharacter);
            }
            position += advance;
        }
        y += height;
    }
    put(dl::end());
}

} // namespace controller
