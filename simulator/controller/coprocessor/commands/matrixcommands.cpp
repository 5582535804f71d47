#include "matrixcommands.h"

#include "dlwords.h"

#include <array>
#include <cstdint>
#include <optional>

namespace controller {

namespace {

constexpr std::int32_t bitmapUnit = 256;
constexpr std::int32_t touchUnit = 65536;
constexpr std::size_t resultOfThreePoints = 12;

// Three source points, then three destination points, as TOUCH_TRANSFORM and BITMAP_TRANSFORM
// have them in their arguments.
std::optional<Affine> argumentTransform(const Call& call, std::int32_t unit) {
    std::array<PointPair, 3> points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] = {call.asSigned(2 * i), call.asSigned(2 * i + 1), call.asSigned(2 * i + 6),
                     call.asSigned(2 * i + 7)};
    }
    return affineThrough(points, unit);
}

} // namespace

void MatrixCommands::addTo(CommandSet& set) {
    set.add(Command::LoadIdentity, *this, &MatrixCommands::loadIdentity);
    set.add(Command::Translate, *this, &MatrixCommands::translate);
    set.add(Command::Scale, *this, &MatrixCommands::scale);
    set.add(Command::Rotate, *this, &MatrixCommands::rotate);
    set.add(Command::RotateAround, *this, &MatrixCommands::rotateAround);
    set.add(Command::SetMatrix, *this, &MatrixCommands::setMatrix);
    set.add(Command::GetMatrix, *this, &MatrixCommands::getMatrix);
    set.add(Command::BitmapTransform, *this, &MatrixCommands::bitmapTransform);
    set.add(Command::TouchTransform, *this, &MatrixCommands::touchTransform);
}

void MatrixCommands::loadIdentity(const Call&) {
    m_matrix.loadIdentity();
}

void MatrixCommands::translate(const Call& call) {
    m_matrix.translate(call.asSigned(0), call.asSigned(1));
}

void MatrixCommands::scale(const Call& call) {
    m_matrix.scale(call.asSigned(0), call.asSigned(1));
}

void MatrixCommands::rotate(const Call& call) {
    m_matrix.rotate(call[0]);
}

void MatrixCommands::rotateAround(const Call& call) {
    m_matrix.rotateAround(call.asSigned(0), call.asSigned(1), call[2], call.asSigned(3));
}

void MatrixCommands::putTransform(const Affine& transform) {
    const std::array<std::int32_t, 6> values = transform.values();
    for (unsigned i = 0; i < values.size(); ++i) {
        m_machine.list.put(dl::bitmapTransform(i, values[i]));
    }
}

void MatrixCommands::setMatrix(const Call&) {
    putTransform(m_matrix.inverse());
}

void MatrixCommands::getMatrix(const Call& call) {
    const std::array<std::int32_t, 6> values = m_matrix.values().values();
    for (std::size_t i = 0; i < values.size(); ++i) {
        call.putResult(m_machine.memory, i, static_cast<std::uint32_t>(values[i]));
    }
}

void MatrixCommands::bitmapTransform(const Call& call) {
    const std::optional<Affine> transform = argumentTransform(call, bitmapUnit);
    if (transform) {
        putTransform(*transform);
    }
    call.putResult(m_machine.memory, resultOfThreePoints, transform ? 1 : 0);
}

// From raw touch coordinates to the screen.
void MatrixCommands::touchTransform(const Call& call) {
    const std::optional<Affine> transform = argumentTransform(call, touchUnit);
    if (transform) {
        setTouchTransform(m_machine.registers, *transform);
    }
    call.putResult(m_machine.memory, resultOfThreePoints, transform ? 1 : 0);
}

void setTouchTransform(Registers& registers, const Affine& transform) {
    constexpr Register targets[] = {Register::TouchTransformA, Register::TouchTransformB,
                                    Register::TouchTransformC, Register::TouchTransformD,
                                    Register::TouchTransformE, Register::TouchTransformF};
    const std::array<std::int32_t, 6> values = transform.values();
    for (std::size_t i = 0; i < values.size(); ++i) {
        registers.set(targets[i], static_cast<std::uint32_t>(values[i]));
    }
}

} // namespace controller
