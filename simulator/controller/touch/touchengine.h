#pragma once

#include "registers.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace controller {

struct Point {
    int x = 0;
    int y = 0;
};

// What REG_TOUCH_RAW_XY reads while no finger is on the panel.
constexpr std::uint32_t untouchedRawXy = 0xFFFFFFFF;
// What every register of screen coordinates reads without its finger.
constexpr std::uint32_t untouchedScreenXy = 0x80008000;

constexpr std::size_t mostFingers = 5;
// The places of fingers in the picture.
using Touches = std::array<std::optional<Point>, mostFingers>;

// Whether the registers show five fingers (CTOUCH_EXTENDED is 0). E1 never does: that bit is about
// something else there.
constexpr bool showsFingers(Generation generation, const Registers& registers) {
    return generation != Generation::E1 && registers[Register::TouchAdcMode] == 0;
}
// Of each finger: where it is, and the tag there.
constexpr std::array<Register, mostFingers> tagPlaceRegisters = {
    Register::TouchTagXy, Register::TouchTag1Xy, Register::TouchTag2Xy, Register::TouchTag3Xy,
    Register::TouchTag4Xy};
constexpr std::array<Register, mostFingers> tagRegisters = {
    Register::TouchTag, Register::TouchTag1, Register::TouchTag2, Register::TouchTag3,
    Register::TouchTag4};

// The touch panel and the engine that samples it, once per frame.
//
// The panel gives raw coordinates, whatever the host wants; screen coordinates come from those
// through the transform registers. A host that writes a wrong transform sees its touches land in
// the wrong place. Every touch mode but OFF samples each frame, ONESHOT only the next one.
//
// One finger or five: with CTOUCH_EXTENDED 0 (E2, E3) the raw registers hold the second finger to
// the fifth, each in screen coordinates.
class TouchEngine {
public:
    explicit TouchEngine(Generation generation) : m_generation(generation) {}

    // `finger` counts from 0.
    void touch(Point pixel, std::size_t finger = 0) { m_fingers.at(finger) = pixel; }
    void release(std::size_t finger = 0) { m_fingers.at(finger).reset(); }

    // A frame begins: where the fingers are now counts for all of it.
    void frameBegins() { m_fingersOfFrame = m_fingers; }
    // That frame has been scanned. Fills in the coordinate registers; gives the places whose tags
    // belong into the tag registers.
    Touches sample(Registers& registers);

    // Raw coordinates of a touch in the middle of a pixel. They are not negative, which puts the
    // panel's top edge, up to seven rows at its right end, out of reach.
    static Point rawPosition(Point pixel);
    // Screen coordinates of raw ones, by the transform in the registers.
    static Point screenPosition(const Registers& registers, Point raw);

private:
    using Fingers = std::array<std::optional<Point>, mostFingers>; // on the panel

    std::optional<Point> place(const Registers& registers, std::size_t finger) const;
    void showOne(Registers& registers, bool touched) const;
    static void showFive(Registers& registers, const Touches& touches);

    Generation m_generation;
    Fingers m_fingers;
    Fingers m_fingersOfFrame;
};

constexpr std::uint32_t packedXy(Point point) {
    return static_cast<std::uint32_t>(point.x) << 16U |
           (static_cast<std::uint32_t>(point.y) & 0xFFFFU);
}

} // namespace controller
