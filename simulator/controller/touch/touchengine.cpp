#include "touchengine.h"

#include "fixedmath.h"

namespace controller {

namespace {

// How this instrument's panel is built, as the transform from its raw to screen coordinates: six
// factors with 16 fraction bits. A host gets right positions with these in its transform
// registers.
constexpr std::int64_t panelA = 24916;
constexpr std::int64_t panelB = 0;
constexpr std::int64_t panelC = -591770;
constexpr std::int64_t panelD = 372;
constexpr std::int64_t panelE = 22707;
constexpr std::int64_t panelF = 10494;

// Resistance between the panel's layers, as REG_TOUCH_RZ has it.
constexpr std::uint32_t resistanceTouched = 1000;
constexpr std::uint32_t resistanceUntouched = 0x7FFF;

constexpr std::uint32_t untouchedDirectXy = 0x80000000;
constexpr std::uint32_t untouchedHalf = 0x8000; // of the fifth finger's place

namespace mode {
constexpr std::uint32_t off = 0;
constexpr std::uint32_t oneShot = 1;
} // namespace mode

int rawClamped(std::int64_t value) {
    return static_cast<int>(clampTo<std::int64_t>(value, 0, 0xFFFE));
}

std::int64_t signedValue(const Registers& registers, Register id) {
    return signExtend(registers[id], 32);
}

int transformed(std::int64_t a, std::int64_t b, std::int64_t c, Point raw) {
    const std::int64_t value = floorQuotient(a * raw.x + b * raw.y + c, 65536);
    return static_cast<int>(clampTo<std::int64_t>(value, -0x7FFF, 0x7FFF));
}

} // namespace

Point TouchEngine::rawPosition(Point pixel) {
    const std::int64_t x = std::int64_t{pixel.x} * 65536 + 32768 - panelC;
    const std::int64_t y = std::int64_t{pixel.y} * 65536 + 32768 - panelF;
    constexpr std::int64_t determinant = panelA * panelE - panelB * panelD;
    return {rawClamped(roundedQuotient(x * panelE - y * panelB, determinant)),
            rawClamped(roundedQuotient(y * panelA - x * panelD, determinant))};
}

Point TouchEngine::screenPosition(const Registers& registers, Point raw) {
    return {transformed(signedValue(registers, Register::TouchTransformA),
                        signedValue(registers, Register::TouchTransformB),
                        signedValue(registers, Register::TouchTransformC), raw),
            transformed(signedValue(registers, Register::TouchTransformD),
                        signedValue(registers, Register::TouchTransformE),
                        signedValue(registers, Register::TouchTransformF), raw)};
}

std::optional<Point> TouchEngine::place(const Registers& registers, std::size_t finger) const {
    const std::optional<Point>& pixel = m_fingersOfFrame[finger];
    return pixel ? std::optional(screenPosition(registers, rawPosition(*pixel))) : std::nullopt;
}

Touches TouchEngine::sample(Registers& registers) {
    const std::uint32_t touchMode = registers[Register::TouchMode];
    const bool fingers = showsFingers(m_generation, registers);
    const bool hard = fingers || resistanceTouched <= registers[Register::TouchRzThresh];
    if (touchMode == mode::oneShot) {
        registers.set(Register::TouchMode, mode::off);
    }
    Touches touches;
    for (std::size_t i = 0; i < (fingers ? mostFingers : 1); ++i) {
        if (touchMode != mode::off && hard) {
            touches[i] = place(registers, i);
        }
    }
    for (std::size_t i = 0; i < mostFingers; ++i) {
        registers.set(tagPlaceRegisters[i], touches[i] ? packedXy(*touches[i]) : untouchedScreenXy);
    }
    registers.set(Register::TouchScreenXy, registers[Register::TouchTagXy]);
    if (fingers) {
        showFive(registers, touches);
    } else {
        showOne(registers, touches[0].has_value());
    }
    return touches;
}

// The raw coordinates of the only finger.
void TouchEngine::showOne(Registers& registers, bool touched) const {
    const std::uint32_t raw =
        touched ? packedXy(rawPosition(*m_fingersOfFrame[0])) : untouchedRawXy;
    registers.set(Register::TouchRz, touched ? resistanceTouched : resistanceUntouched);
    registers.set(Register::TouchRawXy, raw);
    registers.set(Register::TouchDirectXy, touched ? raw & 0x03FF03FFU : untouchedDirectXy);
}

// The same registers, for the second finger and on.
void TouchEngine::showFive(Registers& registers, const Touches& touches) {
    const auto packed = [&touches](std::size_t finger) {
        return touches[finger] ? packedXy(*touches[finger]) : untouchedScreenXy;
    };
    registers.set(Register::TouchRawXy, packed(1));
    registers.set(Register::TouchDirectXy, packed(2));
    registers.set(Register::TouchDirectZ1Z2, packed(3));
    const std::uint32_t fifth = packed(4);
    registers.set(Register::Analog, touches[4] ? fifth >> 16U : untouchedHalf);
    registers.set(Register::TouchRz, touches[4] ? fifth & 0xFFFFU : untouchedHalf);
}

} // namespace controller
