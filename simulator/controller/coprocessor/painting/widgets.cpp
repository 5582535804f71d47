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

// Where a hand of some length ends: angle 0 upwards, clockwise.
Point16 handTip(Point16 center, int length, std::uint32_t angle) {
    return {center.x + static_cast<int>(roundedQuotient(std::int64_t{length} * sine(angle), 65536)),
            center.y -
                static_cast<int>(roundedQuotient(std::int64_t{length} * cosine(angle), 65536))};
}

Box boxOf(const Place& place) {
    return Box::ofPixels(place.x, place.y, place.width, place.height);
}

Disc discOf(const RoundPlace& place) {
    return {{place.x * subpixels, place.y * subpixels}, place.radius * subpixels};
}

// A box along whose longer side something moves.
struct Bar {
    explicit Bar(const Box& all) : box(all), upright(all.height > all.width) {}

    int length() const { return upright ? box.height : box.width; }
    int thickness() const { return upright ? box.width : box.height; }
    Bar inner() const { return Bar(box.inset(thickness() / 8)); }
    // From `start`, which counts from the left or the top.
    Box part(int start, int partLength) const {
        return upright ? Box{box.x, box.y + start, box.width, partLength}
                       : Box{box.x + start, box.y, partLength, box.height};
    }

    Box box;
    bool upright;
};

} // namespace

int Portion::of(int length) const {
    if (range == 0) {
        return 0;
    }
    return static_cast<int>(std::int64_t{length} * std::min(value, range) / range);
}

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

void WidgetWriter::raised(Painter& painter, const Box& box, int radius, const Look& look) const {
    if (!(look.options & option::flat)) {
        painter.color(mixed(look.color, 0, 128));
        painter.box(box.inset(0, edge, 0, 0), radius);
        painter.color(mixed(look.color, m_colors.gradient, 128));
        painter.box(box.inset(0, 0, 0, edge), radius);
        painter.color(look.color);
        painter.box(box.inset(0, edge, 0, edge), radius);
        return;
    }
    painter.color(look.color);
    painter.box(box, radius);
}

void WidgetWriter::roundFace(Painter& painter, const Disc& disc, const Look& look) const {
    int radius = disc.radius;
    if (!(look.options & option::flat)) {
        painter.color(mixed(look.color, 0, 128));
        painter.disc(disc);
        radius -= edge;
        painter.color(mixed(look.color, m_colors.gradient, 128));
        painter.disc({{disc.center.x, disc.center.y - edge}, radius});
    }
    painter.color(look.color);
    painter.disc({disc.center, radius});
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

void WidgetWriter::text(const TextPlace& place, const Label& label) {
    painter().text(label.font, place, label.text);
}

void WidgetWriter::button(const Place& place, unsigned options, const Label& label) {
    {
        Painter face = painter();
        const Box box = boxOf(place);
        raised(face, box, cornerRadius(box), {m_colors.foreground, options});
    }
    if (!label.text.empty()) {
        text({place.x + place.width / 2, place.y + place.height / 2, option::center}, label);
    }
}

void WidgetWriter::keys(const Place& place, unsigned options, const Label& labels) {
    const auto count = static_cast<int>(labels.text.size());
    const auto left = [&](int key) {
        return place.x + static_cast<int>(std::int64_t{place.width + keyGap} * key / count);
    };
    {
        Painter faces = painter();
        for (int i = 0; i < count; ++i) {
            const auto code = static_cast<unsigned char>(labels.text[static_cast<std::size_t>(i)]);
            const bool pressed = code == (options & 0xFFU);
            const Box box =
                Box::ofPixels(left(i), place.y, left(i + 1) - keyGap - left(i), place.height);
            faces.tag(code);
            raised(faces, box, cornerRadius(box),
                   pressed ? Look{m_colors.background, options | option::flat}
                           : Look{m_colors.foreground, options});
        }
    }
    Painter texts = painter();
    for (int i = 0; i < count; ++i) {
        const char label = labels.text[static_cast<std::size_t>(i)];
        texts.tag(static_cast<unsigned char>(label));
        texts.text(
            labels.font,
            {(left(i) + left(i + 1) - keyGap) / 2, place.y + place.height / 2, option::center},
            std::string(1, label));
    }
}

void WidgetWriter::progress(const Place& place, unsigned options, const Portion& done) {
    Painter painting = painter();
    const Bar all(boxOf(place));
    groove(painting, all.box, options);
    const Bar inner = all.inner();
    // From a round dot at 0 to the full length; what stands is filled from below.
    const int width = inner.thickness();
    const int length = width + done.of(inner.length() - width);
    painting.color(m_colors.foreground);
    painting.box(inner.part(inner.upright ? inner.length() - length : 0, length), width / 2);
}

void WidgetWriter::slider(const Place& place, unsigned options, const Portion& position) {
    Painter painting = painter();
    const Bar bar(boxOf(place));
    groove(painting, bar.box, options);
    const int at = position.of(bar.length());
    const int half = bar.thickness() / 2;
    // What has been passed, in the foreground colour, then the knob.
    painting.color(m_colors.foreground);
    painting.box(bar.part(0, at), half);
    const Point16 knob = bar.upright ? Point16{bar.box.x + half, bar.box.y + at}
                                     : Point16{bar.box.x + at, bar.box.y + half};
    roundFace(painting, {knob, bar.thickness()}, {mixed(m_colors.foreground, white, 64), options});
}

void WidgetWriter::scrollbar(const Place& place, unsigned options, const Portion& start,
                             unsigned size) {
    Painter painting = painter();
    const Bar all(boxOf(place));
    groove(painting, all.box, options);
    const Bar inner = all.inner();
    const int travel = inner.length();
    const int shortest = inner.thickness();
    const int length = std::min(travel, std::max(shortest, Portion{size, start.range}.of(travel)));
    raised(painting, inner.part(std::min(travel - length, start.of(travel)), length), shortest / 2,
           {m_colors.foreground, options});
}

void WidgetWriter::toggle(const Place& place, unsigned options, const Label& labels,
                          unsigned state) {
    const auto height = static_cast<int>(labels.font.height);
    const int knob = height / 2 + 2; // pixels
    const std::size_t split = labels.text.find('\xFF');
    const std::string off = labels.text.substr(0, split);
    const std::string on = split == std::string::npos ? off : labels.text.substr(split + 1);
    const int at = Portion{state, 0xFFFF}.of(place.width);
    {
        Painter bar = painter();
        groove(bar, Box::ofPixels(place.x - knob, place.y - 2, place.width + 2 * knob, height + 4),
               options);
    }
    const bool isOff = at < place.width / 2;
    const int middle = place.x + (isOff ? knob : -knob) + place.width / 2;
    text({middle, place.y + height / 2, option::center}, {labels.font, isOff ? off : on});
    Painter top = painter();
    roundFace(top,
              {{(place.x + at) * subpixels, place.y * subpixels + height * subpixels / 2},
               knob * subpixels},
              {m_colors.foreground, options});
}

namespace {

// A gauge's scale: three quarters of a turn, open below.
constexpr std::uint32_t gaugeStart = turn * 5 / 8;
constexpr std::uint32_t gaugeSweep = turn * 3 / 4;

int gaugeHalfWidth(const Disc& disc) {
    return std::max(disc.radius / 128, subpixels / 2);
}

} // namespace

void WidgetWriter::gaugeTicks(Painter& face, const Disc& disc, const GaugeTicks& ticks) const {
    constexpr unsigned mostTicks = 1000;
    const int r = disc.radius;
    const unsigned minors = std::max(ticks.minor, 1U);
    const unsigned majors = clampTo(ticks.major, 1U, mostTicks);
    const unsigned count = std::min(majors * minors, mostTicks);
    face.color(white);
    for (unsigned i = 0; i <= count; ++i) {
        const std::uint32_t angle = gaugeStart + gaugeSweep * i / count;
        const bool isMajor = i % minors == 0;
        const Point16 outer = handTip(disc.center, r * 14 / 16, angle);
        const Point16 inner = handTip(disc.center, isMajor ? r * 12 / 16 : r * 13 / 16, angle);
        face.line(inner, outer, isMajor ? gaugeHalfWidth(disc) * 2 : gaugeHalfWidth(disc));
    }
}

void WidgetWriter::gaugeHand(Painter& face, const Disc& disc, const Portion& value) const {
    const std::uint32_t angle =
        gaugeStart + static_cast<std::uint32_t>(value.of(static_cast<int>(gaugeSweep)));
    face.color(mixed(m_colors.foreground, white, 64));
    face.line(disc.center, handTip(disc.center, disc.radius * 13 / 16, angle),
              gaugeHalfWidth(disc) * 2);
    face.disc({disc.center, disc.radius / 10});
}

void WidgetWriter::gauge(const RoundPlace& place, unsigned options, const GaugeTicks& ticks,
                         const Portion& value) {
    const Disc disc = discOf(place);
    Painter face = painter();
    if (!(options & option::noBack)) {
        roundFace(face, disc, {m_colors.background, options});
    }
    if (!(options & option::noTicks) && ticks.major != 0) {
        gaugeTicks(face, disc, ticks);
    }
    if (!(options & option::noHands)) {
        gaugeHand(face, disc, value);
    }
}

void WidgetWriter::clock(const RoundPlace& place, unsigned options, const TimeOfDay& time) {
    const Disc disc = discOf(place);
    const int r = disc.radius;
    Painter face = painter();
    if (!(options & option::noBack)) {
        roundFace(face, disc, {m_colors.background, options});
    }
    face.color(white);
    if (!(options & option::noTicks)) {
        for (std::uint32_t i = 0; i < 12; ++i) {
            face.line(handTip(disc.center, r * 12 / 16, i * turn / 12),
                      handTip(disc.center, r * 14 / 16, i * turn / 12),
                      std::max(r / 64, subpixels / 2));
        }
    }
    const std::uint64_t ms =
        ((std::uint64_t{time.hours} * 60 + time.minutes) * 60 + time.seconds) * 1000 +
        time.milliseconds;
    const auto angle = [ms](std::uint64_t period) {
        return static_cast<std::uint32_t>(ms % period * turn / period);
    };
    constexpr std::uint64_t minute = 60'000;
    const auto hand = [&](int length, std::uint32_t direction, int halfWidth) {
        face.line(disc.center, handTip(disc.center, length, direction),
                  std::max(halfWidth, subpixels / 2));
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

void WidgetWriter::dial(const RoundPlace& place, unsigned options, unsigned value) {
    const Disc disc = discOf(place);
    const int r = disc.radius;
    Painter face = painter();
    roundFace(face, disc, {m_colors.foreground, options});
    const std::uint32_t angle = turn / 2 + (value & 0xFFFFU);
    face.color(white);
    face.line(handTip(disc.center, r * 9 / 16, angle), handTip(disc.center, r * 13 / 16, angle),
              std::max(r / 16, subpixels / 2));
}

} // namespace controller
