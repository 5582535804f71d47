#include "matrixcommands.h"

#include "dlwords.h"
#include "fixedmath.h"
#include "turn.h"

#include <array>
#include <cstdint>
#include <optional>

namespace controller {

namespace {

constexpr std::int32_t bitmapUnit = 256;
constexpr std::int32_t touchUnit = 65536;
constexpr std::size_t resultOfThreePoints = 12;

constexpr Register touchFactors[] = {Register::TouchTransformA, Register::TouchTransformB,
                                     Register::TouchTransformC, Register::TouchTransformD,
                                     Register::TouchTransformE, Register::TouchTransformF};

struct PanelSize {
    std::int32_t width;
    std::int32_t height;
};

// One row of a touch transform, and the same counted from the other end of `length` pixels.
struct Row {
    std::int32_t x;
    std::int32_t y;
    std::int32_t constant;

    Row fromEnd(std::int32_t length) const {
        const std::int64_t last = std::int64_t{length} * touchUnit - 1;
        return {saturated(-std::int64_t{x}), saturated(-std::int64_t{y}),
                saturated(last - constant)};
    }
};

struct Rows {
    explicit Rows(const Affine& t) : x{t.a, t.b, t.c}, y{t.d, t.e, t.f} {}
    Affine affine() const { return {x.x, x.y, x.constant, y.x, y.y, y.constant}; }

    Row x;
    Row y;
};

// A transform to positions on the panel, as one to positions in the turned picture, and back.
Affine toPicture(const Affine& onPanel, const Turn& turn, const PanelSize& panel) {
    Rows rows(onPanel);
    if (turn.upsideDown) {
        rows.x = rows.x.fromEnd(panel.width);
        rows.y = rows.y.fromEnd(panel.height);
    }
    if (turn.portrait) {
        const Row down = rows.x.fromEnd(panel.width);
        rows.x = rows.y;
        rows.y = down;
    }
    if (turn.mirrored) {
        rows.x = rows.x.fromEnd(turn.portrait ? panel.height : panel.width);
    }
    return rows.affine();
}

Affine fromPicture(const Affine& inPicture, const Turn& turn, const PanelSize& panel) {
    Rows rows(inPicture);
    if (turn.mirrored) {
        rows.x = rows.x.fromEnd(turn.portrait ? panel.height : panel.width);
    }
    if (turn.portrait) {
        const Row across = rows.y.fromEnd(panel.width);
        rows.y = rows.x;
        rows.x = across;
    }
    if (turn.upsideDown) {
        rows.x = rows.x.fromEnd(panel.width);
        rows.y = rows.y.fromEnd(panel.height);
    }
    return rows.affine();
}

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
    set.add(Command::SetRotate, *this, &MatrixCommands::setRotate);
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

// Turns the picture, and the touch transform from what the old turn made of it to the new one.
void MatrixCommands::setRotate(const Call& call) {
    Registers& registers = m_machine.registers;
    const PanelSize panel{static_cast<std::int32_t>(registers[Register::HSize]),
                          static_cast<std::int32_t>(registers[Register::VSize])};
    const Turn before = Turn::of(registers[Register::Rotate]);
    m_machine.bus.write32(registerInfo(Register::Rotate).address(m_machine.generation), call[0]);
    const Turn after = Turn::of(registers[Register::Rotate]);
    const Affine onPanel = fromPicture(touchTransformIn(registers), before, panel);
    setTouchTransform(registers, toPicture(onPanel, after, panel));
}

Affine touchTransformIn(const Registers& registers) {
    std::array<std::int32_t, 6> values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = signExtend(registers[touchFactors[i]], 32);
    }
    return {values[0], values[1], values[2], values[3], values[4], values[5]};
}

void setTouchTransform(Registers& registers, const Affine& transform) {
    const std::array<std::int32_t, 6> values = transform.values();
    for (std::size_t i = 0; i < values.size(); ++i) {
        registers.set(touchFactors[i], static_cast<std::uint32_t>(values[i]));
    }
}

} // namespace controller
