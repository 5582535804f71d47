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

constexpr std::uint32_t untouchedScreenXy = 0x80008000;

constexpr std::uint32_t untouchedDirectXy = 0x80000000;

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

std::optional<Point> TouchEngine::sample(Registers& registers) {
    const std::uint32_t touchMode = registers[Register::TouchMode];
    const bool touched = m_fingerOfFrame && touchMode != mode::off &&
                         resistanceTouched <= registers[Register::TouchRzThresh];
    if (touchMode == mode::oneShot) {
        registers.set(Register::TouchMode, mode::off);
    }
    registers.set(Register::TouchRz, touched ? resistanceTouched : resistanceUntouched);
    if (!touched) {
        registers.set(Register::TouchRawXy, untouchedRawXy);
        registers.set(Register::TouchDirectXy, untouchedDirectXy);
        registers.set(Register::TouchScreenXy, untouchedScreenXy);
        registers.set(Register::TouchTagXy, untouchedScreenXy);
        return std::nullopt;
    }
    const Point raw = rawPosition(*m_fingerOfFrame);
    const Point screen = screenPosition(registers, raw);
    registers.set(Register::TouchRawXy, packedXy(raw));
    registers.set(Register::TouchDirectXy, packedXy(raw) & 0x03FF03FFU);
    registers.set(Register::TouchScreenXy, packedXy(screen));
    registers.set(Register::TouchTagXy, packedXy(screen));
    return screen;
}

} // namespace controller
