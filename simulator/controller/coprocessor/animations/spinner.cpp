#include "spinner.h"

#include "fixedmath.h"

#include <algorithm>

namespace controller {

namespace {

constexpr std::uint32_t turn = 65536;
constexpr unsigned largestScale = 2;

// `length` times the sine of an angle.
int along(int length, std::int32_t factor) {
    return static_cast<int>(roundedQuotient(std::int64_t{length} * factor, 65536));
}

// A position on a circle, angle 0 upwards, turning clockwise.
Point16 around(Point16 center, int radius, std::uint32_t angle) {
    return {center.x + along(radius, sine(angle)), center.y - along(radius, cosine(angle))};
}

// A dot's radius as the swell passes: largest at angle 0.
int swollen(int unit, std::uint32_t angle) {
    const int smallest = unit / 16;
    const int amplitude = (unit / 6 - smallest) / 2;
    return smallest + amplitude + along(amplitude, cosine(angle));
}

} // namespace

int Spinner::unit() const {
    return (m_machine.pictureHeight() * subpixels / 8) << std::min(m_settings.scale, largestScale);
}

void Spinner::draw(Words& words, std::uint32_t frame) const {
    Painter painter(words, m_machine.generation);
    const std::uint32_t phase = frame % period * turn / period;
    switch (m_settings.style) {
    case 1:
        row(painter, phase);
        break;
    case 2:
        hand(painter, phase);
        break;
    case 3:
        pair(painter, phase);
        break;
    default:
        circle(painter, phase);
        break;
    }
}

void Spinner::circle(Painter& painter, std::uint32_t phase) const {
    constexpr std::uint32_t dots = 8;
    for (std::uint32_t i = 0; i < dots; ++i) {
        const std::uint32_t angle = i * turn / dots;
        painter.disc(
            {around(m_settings.center, unit() * 3 / 4, angle), swollen(unit(), phase - angle)});
    }
}

void Spinner::row(Painter& painter, std::uint32_t phase) const {
    constexpr int dots = 5;
    for (int i = 0; i < dots; ++i) {
        const std::uint32_t lag = static_cast<std::uint32_t>(i) * turn / 8;
        const int x = m_settings.center.x + unit() * 3 * (i - dots / 2) / 8;
        painter.disc({{x, m_settings.center.y}, swollen(unit(), phase - lag)});
    }
}

void Spinner::hand(Painter& painter, std::uint32_t phase) const {
    painter.line(m_settings.center, around(m_settings.center, unit() * 7 / 8, phase),
                 std::max(unit() / 32, subpixels));
}

void Spinner::pair(Painter& painter, std::uint32_t phase) const {
    for (const std::uint32_t start : {0U, turn / 2}) {
        painter.disc({around(m_settings.center, unit() * 3 / 5, phase + start), unit() / 5});
    }
}

} // namespace controller
