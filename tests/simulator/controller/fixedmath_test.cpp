#include "fixedmath.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace controller;

TEST(FixedMath, SignExtendsTheLowBits) {
    EXPECT_EQ(signExtend(0x7FFF, 15), -1);
    EXPECT_EQ(signExtend(0x4000, 15), -16384);
    EXPECT_EQ(signExtend(0x3FFF, 15), 16383);
    EXPECT_EQ(signExtend(0xFFFF0001, 16), 1);
    EXPECT_EQ(lowHalf(0x0002FFFF), -1);
    EXPECT_EQ(highHalf(0xFFFE0000), -2);
}

TEST(FixedMath, RoundsQuotientsToNearest) {
    EXPECT_EQ(roundedQuotient(7, 2), 4);
    EXPECT_EQ(roundedQuotient(-7, 2), -4);
    EXPECT_EQ(roundedQuotient(5, -3), -2);
    EXPECT_EQ(roundedQuotient(4, 3), 1);
    EXPECT_EQ(floorQuotient(-7, 2), -4);
    EXPECT_EQ(floorQuotient(7, 2), 3);
    EXPECT_EQ(floorQuotient(-8, 2), -4);
}

TEST(FixedMath, SineIsWithinOneUnitOfTheRealSineEverywhere) {
    constexpr double turn = 2 * 3.14159265358979323846;
    for (std::uint32_t angle = 0; angle < 65536; ++angle) {
        const double expected = std::sin(angle * turn / 65536) * 65536;
        ASSERT_NEAR(sine(angle), expected, 1.0) << angle;
    }
}

TEST(FixedMath, SineIsExactAtTheQuarters) {
    EXPECT_EQ(sine(0), 0);
    EXPECT_EQ(sine(0x4000), 65536);
    EXPECT_EQ(sine(0x8000), 0);
    EXPECT_EQ(sine(0xC000), -65536);
    EXPECT_EQ(cosine(0), 65536);
    EXPECT_EQ(cosine(0x8000), -65536);
    EXPECT_EQ(sine(0x10000 + 0x4000), 65536);
}

} // namespace
