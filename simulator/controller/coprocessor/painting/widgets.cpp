#include "widgets.h"

#include "fixedmath.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace controller {

namespace {

constexpr int keyGap = 3; // pixels between keys
constexpr int edge = subpixels;
constexpr int largestCorner = 8 * subpixels;
constexpr std::uint32_t turn = 65536;
constexpr std::uint32_t white = 0xFFFFFF;

// Corners grow with the shape: an eighth of its shorter side.
int cornerRadius(const Box& box) {
    return std::min(std::min(box.width, box.height) / 8, largestCorner);
}

// `part` of 256 on the way from one colour to another.
std::uint32_t mixed(std::uint32_t from, std::uint32_t to, std::uint32_t part) {
    std::uint32_t result = 0;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        const std::uint32_t a = from >> shift & 0xFFU;
        const std::uint32_t b = to >> shift & 0xFFU;
        result |= (a * (256 - part) + b * part) / 256 << shift;
    }
    return result;
}

// `length` times value / range, at most all of it.
int share(int length, unsigned value, unsigned range) {
    if (range == 0) {
        return 0;
    }
    return static_cast<int>(std::int64_t{length} * std::min(value, range) / range);
}

// Where a hand of some length ends: angle 0 upwards, clockwise.
Point16 handTip(int x, int y, int length, std::uint32_t angle) {
    return {x + static_cast<int>(roundedQuotient(std::int64_t{length} * sine(angle), 65536)),
            y - static_cast<int>(roundedQuotient(std::int64_t{length} * cosine(angle), 65536))};
}

} // namespace

std::string numberText(std::uint32_t number, unsigned options, unsigned base) {
    const bool negative = (options & option::isSigned) && (number & 0x80000000U);
    std::uint32_t rest = negative ? 0U - number : number;
    base = clampTo(base, 2U, 36U);
    std::string digits;
    do {
        digits += "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[rest % base];
        rest /= base;
    } while (rest != 0);
    constexpr std::size_t mostDigits = 32;
    const std::size_t wanted = std::min<std::size_t>(options & 0xFFU, mostDigits);
    digits.resize(std::max(digits.size(), wanted), '0');
    if (negative) {
        digits += '-';
    }
    std::reverse(digits.begin(), digits.end());
    return digits;
}

void WidgetWriter::raised(Painter& painter, const Box& box, int radius, std::uint32_t color,
                          unsigned options) const {
    if (!(options & option::flat)) {
        painter.color(mixed(color, 0, 128));
        painter.box(box.inset(0, edge, 0, 0), radius);
        painter.color(mixed(color, m_colors.gradient, 128));
        painter.box(box.inset(0, 0, 0, edge), radius);
        painter.color(color);
        painter.box(box.inset(0, edge, 0, edge), radius);
        return;
    }
    painter.color(color);
    painter.box(box, radius);
}

void WidgetWriter::roundFace(Painter& painter, int x, int y, int radius, std::uint32_t color,
                             unsigned options) const {
    if (!(options & option::flat)) {
        painter.color(mixed(color, 0, 128));
        painter.disc({x, y}, radius);
        painter.color(mixed(color, m_colors.gradient, 128));
        painter.disc({x, y - edge}, radius - edge);
        radius -= edge;
    }
    painter.color(color);
    painter.disc({x, y}, radius);
}

// A hollow for something to move in.
void WidgetWriter::groove(Painter& painter, const Box& box, unsigned options) const {
    const int radius = std::min(box.width, box.height) / 2;
    if (!(options & option::flat)) {
        painter.color(mixed(m_colors.background, 0, 128));
        painter.box(box, radius);
        painter.color(m_colors.background);
        painter.box(box.inset(0, edge, 0, 0), radius);
        return;
    }
    painter.color(m_colors.background);
    painter.box(box, radius);
}

void WidgetWriter::text(const Font& font, int x, int y, unsigned options, const std::string& text) {
    painter().text(font, x, y, options, text);
}

void WidgetWriter::button(const Place& place, const Font& font, unsigned options,
                          const std::string& label) {
    {
        Painter face = painter();
        const Box box = Box::ofPixels(place.x, place.y, place.width, place.height);
        raised(face, box, cornerRadius(box), m_colors.foreground, options);
    }
    if (!label.empty()) {
        painter().text(font, place.x + place.width / 2, place.y + place.height / 2, option::center,
                       label);
    }
}

void WidgetWriter::keys(const Place& place, const Font& font, unsigned options,
                        const std::string& labels) {
    const auto count = static_cast<int>(labels.size());
    const auto left = [&](int key) {
        return place.x + static_cast<int>(std::int64_t{place.width + keyGap} * key / count);
    };
    {
        Painter faces = painter();
        for (int i = 0; i < count; ++i) {
            const auto code = static_cast<unsigned char>(labels[static_cast<std::size_t>(i)]);
            const bool pressed = code == (options & 0xFFU);
            const Box box =
                Box::ofPixels(left(i), place.y, left(i + 1) - keyGap - left(i), place.height);
            faces.tag(code);
            raised(faces, box, cornerRadius(box),
                   pressed ? m_colors.background : m_colors.foreground,
                   pressed ? options | option::flat : options);
        }
    }
    Painter texts = painter();
    for (int i = 0; i < count; ++i) {
        const char label = labels[static_cast<std::size_t>(i)];
        texts.tag(static_cast<unsigned char>(label));
        texts.text(font, (left(i) + left(i + 1) - keyGap) / 2, place.y + place.height / 2,
                   option::center, std::string(1, label));
    }
}

void WidgetWriter::progress(const Place& place, unsigned options, unsigned value, unsigned range) {
    Painter bar = painter();
    const Box box = Box::ofPixels(place.x, place.y, place.width, place.height);
    groove(bar, box, options);
    const bool upright = box.height > box.width;
    const int thickness = upright ? box.width : box.height;
    const Box inner = box.inset(thickness / 8);
    // From a round dot at 0 to the full length.
    const int width = upright ? inner.width : inner.height;
    const int length = width + share((upright ? inner.height : inner.width) - width, value, range);
    bar.color(m_colors.foreground);
    bar.box(upright ? inner.inset(0, inner.height - length, 0, 0)
                    : inner.inset(0, 0, inner.width - length, 0),
            width / 2);
}

void WidgetWriter::slider(const Place& place, unsigned options, unsigned value, unsigned range) {
    Painter bar = painter();
    const Box box = Box::ofPixels(place.x, place.y, place.width, place.height);
    groove(bar, box, options);
    const bool upright = box.height > box.width;
    const int thickness = upright ? box.width : box.height;
    const int travel = upright ? box.height : box.width;
    const int at = share(travel, value, range);
    // What has been passed, in the foreground colour, then the knob.
    bar.color(m_colors.foreground);
    bar.box(upright ? box.inset(0, 0, 0, travel - at) : box.inset(0, 0, travel - at, 0),
            thickness / 2);
    const int x = upright ? box.x + thickness / 2 : box.x + at;
    const int y = upright ? box.y + at : box.y + thickness / 2;
    roundFace(bar, x, y, thickness, mixed(m_colors.foreground, white, 64), options);
}

void WidgetWriter::scrollbar(const Place& place, unsigned options, unsigned value, unsigned size,
                             unsigned range) {
    Painter bar = painter();
    const Box box = Box::ofPixels(place.x, place.y, place.width, place.height);
    groove(bar, box, options);
    const bool upright = box.height > box.width;
    const int thickness = upright ? box.width : box.height;
    const Box inner = box.inset(thickness / 8);
    const int travel = upright ? inner.height : inner.width;
    const int shortest = upright ? inner.width : inner.height;
    const int length = std::min(travel, std::max(shortest, share(travel, size, range)));
    const int start = std::min(travel - length, share(travel, value, range));
    const int rest = travel - length - start;
    raised(bar, upright ? inner.inset(0, start, 0, rest) : inner.inset(start, 0, rest, 0),
           shortest / 2, m_colors.foreground, options);
}

void WidgetWriter::toggle(int x, int y, int width, const Font& font, unsigned options,
                          unsigned state, const std::string& labels) {
    const auto height = static_cast<int>(font.height);
    const int knob = height / 2 + 2; // pixels
    const std::size_t split = labels.find('\xFF');
    const std::string off = labels.substr(0, split);
    const std::string on = split == std::string::npos ? off : labels.substr(split + 1);
    const int at = share(width, state, 0xFFFF);
    {
        Painter bar = painter();
        const Box box = Box::ofPixels(x - knob, y - 2, width + 2 * knob, height + 4);
        groove(bar, box, options);
    }
    if (at < width / 2) {
        painter().text(font, x + knob + width / 2, y + height / 2, option::center, off);
    } else {
        painter().text(font, x - knob + width / 2, y + height / 2, option::center, on);
    }
    Painter top = painter();
    roundFace(top, (x + at) * subpixels, y * subpixels + height * subpixels / 2, knob * subpixels,
              m_colors.foreground, options);
}

void WidgetWriter::gauge(int x, int y, int radius, unsigned options, unsigned major, unsigned minor,
                         unsigned value, unsigned range) {
    // Three quarters of a turn, open below.
    constexpr std::uint32_t first = turn * 5 / 8;
    constexpr std::uint32_t sweep = turn * 3 / 4;
    constexpr unsigned mostTicks = 1000;
    const int cx = x * subpixels;
    const int cy = y * subpixels;
    const int r = radius * subpixels;
    Painter face = painter();
    if (!(options & option::noBack)) {
        roundFace(face, cx, cy, r, m_colors.background, options);
    }
    const int halfWidth = std::max(r / 128, subpixels / 2);
    const unsigned majors = clampTo(major, 1U, mostTicks);
    const unsigned ticks = std::min(majors * std::max(minor, 1U), mostTicks);
    if (!(options & option::noTicks) && major != 0) {
        face.color(white);
        for (unsigned i = 0; i <= ticks; ++i) {
            const std::uint32_t angle = first + sweep * i / ticks;
            const bool isMajor = i % std::max(minor, 1U) == 0;
            const Point16 outer = handTip(cx, cy, r * 14 / 16, angle);
            const Point16 inner = handTip(cx, cy, isMajor ? r * 12 / 16 : r * 13 / 16, angle);
            face.line(inner, outer, isMajor ? halfWidth * 2 : halfWidth);
        }
    }
    if (!(options & option::noHands)) {
        const std::uint32_t angle =
            first + static_cast<std::uint32_t>(share(static_cast<int>(sweep), value, range));
        const Point16 tip = handTip(cx, cy, r * 13 / 16, angle);
        face.color(mixed(m_colors.foreground, white, 64));
        face.line({cx, cy}, tip, halfWidth * 2);
        face.disc({cx, cy}, r / 10);
    }
}

void WidgetWriter::clock(int x, int y, int radius, unsigned options, unsigned hours,
                         unsigned minutes, unsigned seconds, unsigned milliseconds) {
    const int cx = x * subpixels;
    const int cy = y * subpixels;
    const int r = radius * subpixels;
    Painter face = painter();
    if (!(options & option::noBack)) {
        roundFace(face, cx, cy, r, m_colors.background, options);
    }
    face.color(white);
    if (!(options & option::noTicks)) {
        for (std::uint32_t i = 0; i < 12; ++i) {
            const Point16 outer = handTip(cx, cy, r * 14 / 16, i * turn / 12);
            const Point16 inner = handTip(cx, cy, r * 12 / 16, i * turn / 12);
            face.line(inner, outer, std::max(r / 64, subpixels / 2));
        }
    }
    const std::uint64_t ms =
        ((std::uint64_t{hours} * 60 + minutes) * 60 + seconds) * 1000 + milliseconds;
    const auto angle = [ms](std::uint64_t period) {
        return static_cast<std::uint32_t>(ms % period * turn / period);
    };
    constexpr std::uint64_t minute = 60'000;
    const auto hand = [&](int length, std::uint32_t direction, int halfWidth) {
        const Point16 tip = handTip(cx, cy, length, direction);
        face.line({cx, cy}, tip, std::max(halfWidth, subpixels / 2));
    };
    if (!(options & option::noHands)) {
        hand(r / 2, angle(minute * 60 * 12), r / 24);
        hand(r * 3 / 4, angle(minute * 60), r / 32);
    }
    if (!(options & option::noSeconds)) {
        face.color(m_colors.foreground);
        hand(r * 13 / 16, angle(minute), r / 64);
    }
}

void WidgetWriter::dial(int x, int y, int radius, unsigned options, unsigned value) {
    const int cx = x * subpixels;
    const int cy = y * subpixels;
    const int r = radius * subpixels;
    Painter face = painter();
    roundFace(face, cx, cy, r, m_colors.foreground, options);
    const std::uint32_t angle = turn / 2 + (value & 0xFFFFU);
    const Point16 inner = handTip(cx, cy, r * 9 / 16, angle);
    const Point16 outer = handTip(cx, cy, r * 13 / 16, angle);
    face.color(white);
    face.line(inner, outer, std::max(r / 16, subpixels / 2));
}

} // namespace controller
