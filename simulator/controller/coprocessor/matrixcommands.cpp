#include "coprocessor.h"
#include "dlwords.h"
#include "fixedmath.h"

// The coprocessor's commands on the bitmap matrix and on transforms through three points.

namespace controller {

namespace {

constexpr std::int32_t bitmapUnit = 256;
constexpr std::int32_t touchUnit = 65536;
constexpr std::size_t resultOfThreePoints = 12;

std::int32_t asSigned(std::uint32_t word) {
    return signExtend(word, 32);
}

} // namespace

Coprocessor::Outcome Coprocessor::loadIdentity() {
    m_matrix.loadIdentity();
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::translate() {
    m_matrix.translate(asSigned(argument(0)), asSigned(argument(1)));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::scale() {
    m_matrix.scale(asSigned(argument(0)), asSigned(argument(1)));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::rotate() {
    m_matrix.rotate(argument(0));
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::rotateAround() {
    m_matrix.rotateAround(asSigned(argument(0)), asSigned(argument(1)), argument(2),
                          asSigned(argument(3)));
    return Outcome::Done;
}

void Coprocessor::putTransform(const Affine& transform) {
    const std::array<std::int32_t, 6> values = transform.values();
    for (unsigned i = 0; i < values.size(); ++i) {
        putWord(dl::bitmapTransform(i, values[i]));
    }
}

Coprocessor::Outcome Coprocessor::setMatrix() {
    putTransform(m_matrix.inverse());
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::getMatrix() {
    const std::array<std::int32_t, 6> values = m_matrix.values().values();
    for (std::size_t i = 0; i < values.size(); ++i) {
        putResult(i, static_cast<std::uint32_t>(values[i]));
    }
    return Outcome::Done;
}

// Three source points, then three destination points, as TOUCH_TRANSFORM and BITMAP_TRANSFORM
// have them in their arguments.
std::optional<Affine> Coprocessor::argumentTransform(std::int32_t unit) const {
    std::array<PointPair, 3> points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] = {asSigned(argument(2 * i)), asSigned(argument(2 * i + 1)),
                     asSigned(argument(2 * i + 6)), asSigned(argument(2 * i + 7))};
    }
    return affineThrough(points, unit);
}

Coprocessor::Outcome Coprocessor::bitmapTransform() {
    const std::optional<Affine> transform = argumentTransform(bitmapUnit);
    if (transform) {
        putTransform(*transform);
    }
    putResult(resultOfThreePoints, transform ? 1 : 0);
    return Outcome::Done;
}

void Coprocessor::setTouchTransform(const Affine& transform) {
    constexpr Register targets[] = {Register::TouchTransformA, Register::TouchTransformB,
                                    Register::TouchTransformC, Register::TouchTransformD,
                                    Register::TouchTransformE, Register::TouchTransformF};
    const std::array<std::int32_t, 6> values = transform.values();
    for (std::size_t i = 0; i < values.size(); ++i) {
        m_registers.set(targets[i], static_cast<std::uint32_t>(values[i]));
    }
}

// From raw touch coordinates to the screen.
Coprocessor::Outcome Coprocessor::touchTransform() {
    const std::optional<Affine> transform = argumentTransform(touchUnit);
    if (transform) {
        setTouchTransform(*transform);
    }
    putResult(resultOfThreePoints, transform ? 1 : 0);
    return Outcome::Done;
}

} // namespace controller
