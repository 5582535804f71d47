#pragma once

#include "overlay.h"

#include <cstdint>

namespace controller {

// What SPINNER draws, in the current colour.
//
// The unit is the radius of the circle the animation fills: with scale 0 an eighth of the panel's
// height (the whole is a quarter of the panel high), with scale 1 a quarter (half the panel), with
// scale 2 half (the full panel).
//
// Style 0: eight dots on a circle of 3/4 unit; a swell of their size runs around it.
// Style 1: five dots on a horizontal line; the swell runs along it.
// Style 2: a clock hand of 7/8 unit that turns.
// Style 3: two dots of 1/5 unit, opposite each other on a circle of 3/5 unit.
//
// Every style turns clockwise, and repeats after `period` frames.
class Spinner : public Drawing {
public:
    struct Settings {
        Point16 center; // 1/16 pixel
        unsigned style = 0;
        unsigned scale = 0;
    };

    Spinner(const Machine& machine, const Settings& settings)
        : m_machine(machine), m_settings(settings) {}

    void draw(Words& words, std::uint32_t frame) const override;

private:
    static constexpr std::uint32_t period = 90; // frames

    void circle(Painter& painter, std::uint32_t phase) const;
    void row(Painter& painter, std::uint32_t phase) const;
    void hand(Painter& painter, std::uint32_t phase) const;
    void pair(Painter& painter, std::uint32_t phase) const;
    int unit() const;

    const Machine& m_machine;
    Settings m_settings;
};

} // namespace controller
