#include "bitmapmatrix.h"
#include "host.h"
#include "threepoints.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace controllertest;
using controller::affineThrough;
using controller::BitmapMatrix;
using testing::ElementsAre;
using testing::ElementsAreArray;
using V = std::vector<std::uint32_t>;

constexpr std::int32_t one = 65536;

// BITMAP_TRANSFORM_A .. _F with these values.
V transformWords(const std::vector<std::int32_t>& values) {
    V result;
    for (std::uint32_t i = 0; i < values.size(); ++i) {
        const std::uint32_t mask = i == 2 || i == 5 ? 0xFFFFFF : 0x1FFFF;
        result.push_back((0x15 + i) << 24U | (static_cast<std::uint32_t>(values[i]) & mask));
    }
    return result;
}

V signedWords(std::initializer_list<std::int32_t> values) {
    V result;
    for (const std::int32_t value : values) {
        result.push_back(static_cast<std::uint32_t>(value));
    }
    return result;
}

class MatrixCommands : public testing::Test {
protected:
    MatrixCommands() { host.boot(); }
    V listOf(const V& commands) {
        host.send(V{cmd::dlStart, cmd::loadIdentity} + commands);
        return host.listWritten();
    }
    Host host{Generation::E2};
};

TEST_F(MatrixCommands, TheIdentityIsTheIdentity) {
    EXPECT_THAT(listOf({cmd::setMatrix}), ElementsAreArray(transformWords({256, 0, 0, 0, 256, 0})));
}

TEST_F(MatrixCommands, ScalingUpSamplesMoreSlowly) {
    EXPECT_THAT(listOf({cmd::scale, 2 * one, 4 * one, cmd::setMatrix}),
                ElementsAreArray(transformWords({128, 0, 0, 0, 64, 0})));
}

TEST_F(MatrixCommands, TranslationMovesThePictureForward) {
    EXPECT_THAT(listOf(V{cmd::translate} + signedWords({10 * one, -3 * one}) + V{cmd::setMatrix}),
                ElementsAreArray(transformWords({256, 0, -2560, 0, 256, 768})));
}

TEST_F(MatrixCommands, AQuarterTurnIsClockwise) {
    // The bitmap's point (1, 0) comes to stand at (0, 1): sample (x, y) at (y, -x).
    EXPECT_THAT(listOf({cmd::rotate, 16384, cmd::setMatrix}),
                ElementsAreArray(transformWords({0, 256, 0, -256, 0, 0})));
}

TEST_F(MatrixCommands, TheLastOperationActsFirst) {
    // Turned around (80, 60): that point stays where it is.
    EXPECT_THAT(listOf(V{cmd::translate} + signedWords({80 * one, 60 * one}) +
                       V{cmd::rotate, 32768} + V{cmd::translate} +
                       signedWords({-80 * one, -60 * one}) + V{cmd::setMatrix}),
                ElementsAreArray(transformWords({-256, 0, 160 * 256, 0, -256, 120 * 256})));
    EXPECT_THAT(listOf(V{cmd::scale} + signedWords({2 * one, 2 * one}) + V{cmd::translate} +
                       signedWords({10 * one, 0}) + V{cmd::setMatrix}),
                ElementsAreArray(transformWords({128, 0, -2560, 0, 128, 0})));
}

TEST_F(MatrixCommands, TheMatrixOutlivesTheList) {
    listOf({cmd::scale, 2 * one, 2 * one});
    host.send({cmd::dlStart, cmd::setMatrix});
    EXPECT_EQ(host.listWritten()[0], 0x15000080U);
}

TEST_F(MatrixCommands, TheMatrixCanBeRead) {
    host.send(V{cmd::loadIdentity, cmd::translate} + signedWords({10 * one, 20 * one}) +
              V{cmd::scale, 3 * one, one / 2});
    const std::uint32_t start = host.read16(host.at.cmdWrite());
    host.send({cmd::getMatrix, 0, 0, 0, 0, 0, 0});
    std::vector<std::uint32_t> results;
    for (std::uint32_t i = 1; i <= 6; ++i) {
        results.push_back(host.read32(host.at.ramCmd() + start + 4 * i));
    }
    EXPECT_THAT(results, ElementsAre(3 * one, 0, 10 * one, 0, one / 2, 20 * one));
}

TEST_F(MatrixCommands, AMatrixWithoutInverseDoesNoHarm) {
    EXPECT_THAT(listOf({cmd::scale, 0, 0, cmd::setMatrix}),
                ElementsAreArray(transformWords({256, 0, 0, 0, 256, 0})));
}

TEST_F(MatrixCommands, ThreePointsMakeABitmapTransform) {
    const std::uint32_t start = host.read16(host.at.cmdWrite());
    // The logo's breathing: (0, 84) shows line 100. 100 / 84 = 304.76 / 256.
    host.send({cmd::dlStart, cmd::bitmapTransform, 0, 0, 100, 0, 0, 84, 0, 0, 100, 0, 0, 100, 0});
    EXPECT_THAT(host.listWritten(), ElementsAreArray(transformWords({256, 0, 0, 0, 305, 0})));
    EXPECT_EQ(host.read32(host.at.ramCmd() + start + 14 * 4), 1U);
}

TEST_F(MatrixCommands, PointsOnALineMakeNone) {
    const std::uint32_t start = host.read16(host.at.cmdWrite());
    host.send({cmd::dlStart, cmd::bitmapTransform, 0, 0, 1, 1, 2, 2, 0, 0, 1, 0, 0, 1, 99});
    EXPECT_TRUE(host.listWritten().empty());
    EXPECT_EQ(host.read32(host.at.ramCmd() + start + 14 * 4), 0U);
}

TEST_F(MatrixCommands, ThreePointsMakeATouchTransform) {
    // x = rx / 2 + 10, y = ry / 4 - 5.
    host.send(V{cmd::touchTransform, 0, 0, 200, 0, 0, 400} +
              signedWords({10, -5, 110, -5, 10, 95}) + V{0});
    std::vector<std::int32_t> factors;
    for (std::uint32_t i = 0; i < 6; ++i) {
        factors.push_back(
            static_cast<std::int32_t>(host.read32(host.at.touchTransformA() + 4 * i)));
    }
    EXPECT_THAT(factors, ElementsAre(32768, 0, 10 * one, 0, 16384, -5 * one));
}

TEST(ThreePoints, RejectsWhatDoesNotFit) {
    const std::array<controller::PointPair, 3> huge = {
        {{0, 0, 0, 0}, {1 << 20, 0, 1, 0}, {0, 1, 0, 1}}};
    EXPECT_FALSE(affineThrough(huge, 65536));
    const std::array<controller::PointPair, 3> steep = {
        {{0, 0, 0, 0}, {1, 0, 65535, 0}, {0, 1, 0, 65535}}};
    EXPECT_FALSE(affineThrough(steep, 65536));
    EXPECT_TRUE(affineThrough(steep, 256));
}

TEST(BitmapMatrix, SaturatesInsteadOfOverflowing) {
    BitmapMatrix matrix;
    for (int i = 0; i < 40; ++i) {
        matrix.scale(0x7FFFFFFF, -0x7FFFFFFF);
        matrix.translate(-0x7FFFFFFF - 1, 0x7FFFFFFF);
        matrix.rotate(12345);
        matrix.rotateAround(0x7FFFFFFF, -0x7FFFFFFF - 1, 54321, 0x7FFFFFFF);
        matrix.inverse();
    }
    SUCCEED();
}

} // namespace
