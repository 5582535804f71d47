#pragma once

#include "registers.h"

#include <cstdint>
#include <optional>

namespace controller {

struct Point {
    int x = 0;
    int y = 0;
};

// What REG_TOUCH_RAW_XY reads while no finger is on the panel.
constexpr std::uint32_t untouchedRawXy = 0xFFFFFFFF;

// The touch panel and the engine that samples it, once per frame.
//
// The panel gives raw coordinates, whatever the host wants; screen coordinates come from those
// through the transform registers. A host that writes a wrong transform sees its touches land in
// the wrong place. Modelled is one finger; every touch mode but OFF samples each frame, ONESHOT
// only the next one. The extended multi-touch registers show no further fingers.
class TouchEngine {
public:
    void touch(Point pixel) { m_finger = pixel; }
    void release() { m_finger.reset(); }

    // A frame begins: where the finger is now counts for all of it.
    void frameBegins() { m_fingerOfFrame = m_finger; }
    // That frame has been scanned. Fills in the coordinate registers; gives the pixel whose tag
    // belongs into REG_TOUCH_TAG, if there is a touch.
    std::optional<Point> sample(Registers& registers);

    // Raw coordinates of a touch in the middle of a pixel. They are not negative, which puts the
    // panel's top edge, up to seven rows at its right end, out of reach.
    static Point rawPosition(Point pixel);
    // Screen coordinates of raw ones, by the transform in the registers.
    static Point screenPosition(const Registers& registers, Point raw);

private:
    std::optional<Point> m_finger;
    std::optional<Point> m_fingerOfFrame;
};

constexpr std::uint32_t packedXy(Point point) {
    return static_cast<std::uint32_t>(point.x) << 16U |
           (static_cast<std::uint32_t>(point.y) & 0xFFFFU);
}

} // namespace controller
