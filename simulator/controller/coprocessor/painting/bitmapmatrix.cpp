#include "bitmapmatrix.h"

#include "dlwords.h"
#include "fixedmath.h"

namespace controller {

namespace {

constexpr std::int64_t matrixOne = 65536;
// BITMAP_TRANSFORM words: signed 8.8 in 17 bits.
constexpr std::int64_t factorLimit = 0xFFFF;

std::int32_t dot(std::int32_t a, std::int32_t x, std::int32_t b, std::int32_t y,
                 std::int32_t c = 0) {
    // Halved first: the sum of two products may not fit.
    const std::int64_t sum = std::int64_t{a} * x / 2 + std::int64_t{b} * y / 2;
    return saturated(roundedQuotient(sum, matrixOne / 2) + c);
}

std::int32_t factor(std::int64_t numerator, std::int64_t determinant) {
    // numerator has 16 fraction bits, the determinant 16, the result 8.
    return static_cast<std::int32_t>(
        clampTo(roundedQuotient(numerator * 256, determinant), -factorLimit - 1, factorLimit));
}

std::int32_t offset(std::int64_t value) {
    return static_cast<std::int32_t>(
        clampTo(value, -dl::largestTransformOffset - 1, dl::largestTransformOffset));
}

} // namespace

void BitmapMatrix::apply(const Affine& first) {
    const Affine m = m_values;
    m_values = {dot(m.a, first.a, m.b, first.d),      dot(m.a, first.b, m.b, first.e),
                dot(m.a, first.c, m.b, first.f, m.c), dot(m.d, first.a, m.e, first.d),
                dot(m.d, first.b, m.e, first.e),      dot(m.d, first.c, m.e, first.f, m.f)};
}

void BitmapMatrix::translate(std::int32_t x, std::int32_t y) {
    apply({static_cast<std::int32_t>(matrixOne), 0, x, 0, static_cast<std::int32_t>(matrixOne), y});
}

void BitmapMatrix::scale(std::int32_t x, std::int32_t y) {
    apply({x, 0, 0, 0, y, 0});
}

void BitmapMatrix::rotate(std::uint32_t angle) {
    // Clockwise on a screen whose y runs down.
    const std::int32_t s = sine(angle);
    const std::int32_t c = cosine(angle);
    apply({c, -s, 0, s, c, 0});
}

void BitmapMatrix::rotateAround(std::int32_t x, std::int32_t y, std::uint32_t angle,
                                std::int32_t factorOfScale) {
    const std::int32_t tx = saturated(x * matrixOne);
    const std::int32_t ty = saturated(y * matrixOne);
    translate(tx, ty);
    rotate(angle);
    scale(factorOfScale, factorOfScale);
    translate(saturated(-std::int64_t{tx}), saturated(-std::int64_t{ty}));
}

Affine BitmapMatrix::inverse() const {
    const Affine& m = m_values;
    const std::int64_t determinant = // 16 fraction bits
        dot(m.a, m.e, saturated(-std::int64_t{m.b}), m.d);
    if (determinant == 0) {
        return {256, 0, 0, 0, 256, 0};
    }
    // The offsets from the exact factors, in 64 bits: (b*f - c*e) and (c*d - a*f).
    const std::int64_t c = std::int64_t{dot(m.b, m.f, saturated(-std::int64_t{m.c}), m.e)} * 256;
    const std::int64_t f = std::int64_t{dot(m.c, m.d, saturated(-std::int64_t{m.a}), m.f)} * 256;
    return {factor(m.e, determinant),
            factor(-std::int64_t{m.b}, determinant),
            offset(roundedQuotient(c, determinant)),
            factor(-std::int64_t{m.d}, determinant),
            factor(m.a, determinant),
            offset(roundedQuotient(f, determinant))};
}

} // namespace controller
