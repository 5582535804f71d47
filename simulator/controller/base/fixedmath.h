#pragma once

#include <cstdint>
#include <limits>

// Integer arithmetic of the model: everything that a picture depends on is computed with these,
// so that a picture is the same bit for bit on every machine.

namespace controller {

// The low `bits` bits of `value` as a two's complement number.
constexpr std::int32_t signExtend(std::uint32_t value, unsigned bits) {
    const std::uint32_t sign = 1U << (bits - 1);
    const std::uint32_t field = value & (sign | (sign - 1));
    return static_cast<std::int32_t>(static_cast<std::int64_t>(field ^ sign) -
                                     static_cast<std::int64_t>(sign));
}

// The 16-bit halves of an argument word, signed.
constexpr int lowHalf(std::uint32_t word) {
    return signExtend(word, 16);
}
constexpr int highHalf(std::uint32_t word) {
    return signExtend(word >> 16U, 16);
}

// Quotient rounded to the nearest integer, halves away from zero. `divisor` is not 0.
constexpr std::int64_t roundedQuotient(std::int64_t dividend, std::int64_t divisor) {
    const bool negative = (dividend < 0) != (divisor < 0);
    const auto magnitude = [](std::int64_t value) {
        return value < 0 ? 0 - static_cast<std::uint64_t>(value)
                         : static_cast<std::uint64_t>(value);
    };
    const std::uint64_t by = magnitude(divisor);
    const std::uint64_t quotient = magnitude(dividend) / by;
    const std::uint64_t rest = magnitude(dividend) % by;
    const auto rounded = static_cast<std::int64_t>(quotient + (rest >= by - rest ? 1 : 0));
    return negative ? -rounded : rounded;
}

// Quotient rounded toward minus infinity. `divisor` is positive.
constexpr std::int64_t floorQuotient(std::int64_t dividend, std::int64_t divisor) {
    const std::int64_t quotient = dividend / divisor;
    return quotient - (dividend % divisor < 0 ? 1 : 0);
}

// Quotient rounded toward plus infinity. `divisor` is positive.
constexpr std::int64_t ceilQuotient(std::int64_t dividend, std::int64_t divisor) {
    return -floorQuotient(-dividend, divisor);
}

template<typename T>
constexpr T clampTo(T value, T low, T high) {
    return value < low ? low : (value > high ? high : value);
}

constexpr std::int32_t saturated(std::int64_t value) {
    return static_cast<std::int32_t>(clampTo<std::int64_t>(
        value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

namespace detail {

// sin(x) for x in [0, pi/2], both with 30 fraction bits: the Taylor series up to x^13, whose
// remainder is below 2^-30.
constexpr std::int64_t sineOfRadians(std::int64_t x) {
    const std::int64_t square = (x * x) >> 30;
    std::int64_t term = x;
    std::int64_t sum = x;
    for (int n = 2; n <= 12; n += 2) {
        term = -(((term * square) >> 30) / (static_cast<std::int64_t>(n) * (n + 1)));
        sum += term;
    }
    return sum;
}

constexpr std::int32_t quarterSine(std::uint32_t angle) { // 0 .. 0x4000
    constexpr std::int64_t halfPi = 1686629713;           // pi / 2 with 30 fraction bits
    return static_cast<std::int32_t>((sineOfRadians((halfPi * angle) >> 14) + (1 << 13)) >> 14);
}

} // namespace detail

// Sine and cosine of an angle of 65536 to the turn (any multiple of a turn is cut off), 65536
// standing for 1.
constexpr std::int32_t sine(std::uint32_t angle) {
    const std::uint32_t half = angle & 0x7FFFU;
    const std::int32_t magnitude = detail::quarterSine(half <= 0x4000U ? half : 0x8000U - half);
    return (angle & 0x8000U) ? -magnitude : magnitude;
}

constexpr std::int32_t cosine(std::uint32_t angle) {
    return sine(angle + 0x4000U);
}

// The angle of the direction (x, y) on a screen whose y runs down: 0 is up, 65536 a turn,
// clockwise. 0 for the point itself.
constexpr std::uint32_t angleOf(int x, int y) {
    if (x == 0 && y == 0) {
        return 0;
    }
    // Folded into the quarter from up to right, then halved until it fits.
    const std::int64_t right = x < 0 ? -std::int64_t{x} : x;
    const std::int64_t up = y > 0 ? std::int64_t{y} : -std::int64_t{y};
    std::uint32_t angle = 0;
    for (std::uint32_t step = 0x2000; step > 0; step /= 2) {
        if (right * cosine(angle + step) >= up * sine(angle + step)) {
            angle += step;
        }
    }
    angle += angle == 0x3FFF && up == 0 ? 1 : 0;
    const std::uint32_t rightSide = y <= 0 ? angle : 0x8000U - angle;
    return x >= 0 ? rightSide & 0xFFFFU : (0x10000U - rightSide) & 0xFFFFU;
}

} // namespace controller
