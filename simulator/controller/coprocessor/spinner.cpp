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

// A position on the unit circle, angle 0 upwards, turning clockwise.
Point16 around(int x, int y, int radius, std::uint32_t angle) {
    return {x + along(radius, sine(angle)), y - along(radius, cosine(angle))};
}

// A dot's radius as the swell passes: largest at angle 0.
int swollen(int smallest, int largest, std::uint32_t angle) {
    const int amplitude = (largest - smallest) / 2;
    return smallest + amplitude + along(amplitude, cosine(angle));
}

} // namespace

void appendSpinner(Words& words, Generation generation, int panelHeight, const Spinner& spinner,
                   std::uint32_t frame) {
    Painter painter(words, generation);
    const int unit = (panelHeight * subpixels / 8) << std::min(spinner.scale, largestScale);
    const int x = spinner.x * subpixels;
    const int y = spinner.y * subpixels;
    const std::uint32_t phase = frame % spinnerPeriod * turn / spinnerPeriod;

    switch (spinner.style) {
    case 1: {
        constexpr int dots = 5;
        for (int i = 0; i < dots; ++i) {
            const std::uint32_t lag = static_cast<std::uint32_t>(i) * turn / 8;
            painter.disc(x + unit * 3 * (i - dots / 2) / 8, y,
                         swollen(unit / 16, unit / 6, phase - lag));
        }
        break;
    }
    case 2: {
        const Point16 tip = around(x, y, unit * 7 / 8, phase);
        painter.line(x, y, tip.x, tip.y, std::max(unit / 32, subpixels));
        break;
    }
    case 3:
        for (const std::uint32_t start : {0U, turn / 2}) {
            const Point16 dot = around(x, y, unit * 3 / 5, phase + start);
            painter.disc(dot.x, dot.y, unit / 5);
        }
        break;
    default: {
        constexpr std::uint32_t dots = 8;
        for (std::uint32_t i = 0; i < dots; ++i) {
            const std::uint32_t angle = i * turn / dots;
            const Point16 dot = around(x, y, unit * 3 / 4, angle);
            painter.disc(dot.x, dot.y, swollen(unit / 16, unit / 6, phase - angle));
        }
        break;
    }
    }
}

} // namespace controller
