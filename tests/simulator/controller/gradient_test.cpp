#include "host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace controllertest;
using V = std::vector<std::uint32_t>;

struct Line {
    int x0, y0, x1, y1;
};

// What a gradient should look like, in real numbers.
double ideal(const Line& line, std::uint32_t from, std::uint32_t to, int x, int y) {
    const double vx = line.x1 - line.x0;
    const double vy = line.y1 - line.y0;
    const double t = ((x - line.x0) * vx + (y - line.y0) * vy) / (vx * vx + vy * vy);
    const double part = std::clamp(t, 0.0, 1.0);
    return from + (static_cast<double>(to) - from) * part;
}

V command(const Line& line, std::uint32_t from, std::uint32_t to) {
    return {cmd::gradient, pair(line.x0, line.y0), from, pair(line.x1, line.y1), to};
}

class Gradient : public testing::TestWithParam<Generation> {
protected:
    const controller::Picture& show(Host& host, const V& commands) {
        host.send(V{cmd::dlStart, 0x26000007} + commands + V{0, cmd::swap});
        host.waitFrames(2);
        return host.chip.frame().picture;
    }
    // Largest deviation of the blue channel from the ideal, over the whole panel, or every so many
    // of its rows.
    static double worst(const controller::Picture& picture, const Line& line, std::uint32_t from,
                        std::uint32_t to, int step = 1) {
        double largest = 0;
        for (int y = 0; y < picture.height; y += step) {
            for (int x = 0; x < picture.width; ++x) {
                const double blue = picture.at(x, y) & 0xFF;
                largest = std::max(largest, std::abs(blue - ideal(line, from, to, x, y)));
            }
        }
        return largest;
    }
};

INSTANTIATE_TEST_SUITE_P(Generations, Gradient, testing::Values(Generation::E1, Generation::E3));

TEST_P(Gradient, TheScreensBackgroundIsRightEverywhere) {
    Host host(GetParam());
    host.bootWithPanel();
    const Line line{21, 13, 455, 268};
    EXPECT_LE(worst(show(host, command(line, 0xCACACA, 0xF3F3F3)), line, 0xCA, 0xF3), 1.0);
    EXPECT_TRUE(host.seen.complaints.empty());
}

TEST_P(Gradient, LongGradientsInAnyDirectionAreRightAndConstantBeyondTheirEnds) {
    Host host(GetParam());
    host.bootWithPanel();
    for (const Line& line : {Line{21, 13, 455, 268}, Line{455, 268, 21, 13}, Line{50, 200, 400, 30},
                             Line{400, 30, 50, 200}, Line{100, 0, 380, 0}, Line{380, 0, 100, 0},
                             Line{0, 40, 0, 230}, Line{0, 230, 0, 40}, Line{-200, -100, 700, 400},
                             Line{300, 100, 150, 101}, Line{200, 250, 210, 20}}) {
        EXPECT_LE(worst(show(host, command(line, 0, 0xFF)), line, 0, 0xFF), 2.0)
            << line.x0 << ',' << line.y0 << " to " << line.x1 << ',' << line.y1;
    }
}

TEST_P(Gradient, ShortGradientsAreStepsInTheRightPlace) {
    Host host(GetParam());
    host.bootWithPanel();
    for (const Line& line :
         {Line{240, 100, 241, 100}, Line{241, 100, 240, 100}, Line{400, 200, 400, 201},
          Line{100, 50, 103, 48}, Line{200, 100, 192, 107}}) {
        const controller::Picture& picture = show(host, command(line, 0, 0xFF));
        for (int y = 0; y < 272; ++y) {
            for (int x = 0; x < 480; ++x) {
                const double vx = line.x1 - line.x0;
                const double vy = line.y1 - line.y0;
                const double along = ((x - line.x0) * vx + (y - line.y0) * vy) / std::hypot(vx, vy);
                const std::uint32_t blue = picture.at(x, y) & 0xFF;
                if (along < -2) {
                    ASSERT_EQ(blue, 0U) << x << ',' << y;
                } else if (along > std::hypot(vx, vy) + 2) {
                    ASSERT_EQ(blue, 255U) << x << ',' << y;
                }
            }
        }
    }
}

// Some are slanted by whole pixels, some by hardly any. Far from the vector a mistake in its
// direction shows most.
TEST_P(Gradient, OfAnyLengthAndDirectionIsRightEverywhere) {
    constexpr int directions = 5;
    Host host(GetParam());
    host.bootWithPanel();
    double angle = 0;
    for (int length = 1; length <= 600; length += 1 + length / 17 * 8) {
        for (int i = 0; i < directions; ++i, angle += 0.618) {
            const int vx = static_cast<int>(std::lround(length * std::cos(angle)));
            const int vy = static_cast<int>(std::lround(length * std::sin(angle)));
            const int x = 480 * (i % 2) - vx / 2; // at the left or right border
            const int y = 272 * (i / 2) / 2 - vy / 2;
            const Line line{x, y, x + vx, y + vy};
            ASSERT_LE(worst(show(host, command(line, 0, 0xFF)), line, 0, 0xFF, 3), 2.0)
                << line.x0 << ',' << line.y0 << " to " << line.x1 << ',' << line.y1;
        }
    }
    EXPECT_TRUE(host.seen.complaints.empty());
}

TEST_P(Gradient, AlongAnAxisIsRightEverywhere) {
    Host host(GetParam());
    host.bootWithPanel();
    for (int length = 1; length <= 120; length += length < 20 ? 1 : 20) {
        for (const Line& line :
             {Line{240, 100, 240 + length, 100}, Line{240, 100, 240 - length, 100},
              Line{240, 100, 240, 100 + length}, Line{240, 100, 240, 100 - length}}) {
            EXPECT_LE(worst(show(host, command(line, 0, 0xFF)), line, 0, 0xFF), 2.0)
                << line.x0 << ',' << line.y0 << " to " << line.x1 << ',' << line.y1;
        }
    }
}

TEST_P(Gradient, OfOneColourNeedsNoScratchBitmap) {
    Host host(GetParam());
    host.bootWithPanel();
    host.write8(1000, 0xFF);
    // Handle 15 is one full L8 texel.
    const controller::Picture& picture =
        show(host, V{0x0500000F, 0x010003E8, 0x07000000U | 3U << 19U | 1U << 9U | 1U,
                     0x08000000U | 1U << 9U | 1U} +
                       command({10, 10, 200, 100}, 0x102030, 0x102030) +
                       V{0x1F000001, 0x80000000U | 50U << 21U | 60U << 12U | 15U << 7U});
    EXPECT_EQ(picture.at(49, 60), 0xFF102030);
    EXPECT_EQ(picture.at(50, 60), 0xFFFFFFFF);
    EXPECT_EQ(picture.at(51, 60), 0xFF102030);
}

TEST_P(Gradient, FarAwayVectorsLeaveOneColour) {
    Host host(GetParam());
    host.bootWithPanel();
    const controller::Picture& before =
        show(host, command({30000, 30000, 30001, 30000}, 0x112233, 0x445566));
    EXPECT_EQ(before.at(0, 0), 0xFF112233);
    EXPECT_EQ(before.at(479, 271), 0xFF112233);
    const controller::Picture& after =
        show(host, command({-30000, 0, -29990, 3}, 0x112233, 0x445566));
    EXPECT_EQ(after.at(0, 0), 0xFF445566);
    EXPECT_EQ(after.at(479, 271), 0xFF445566);
    const controller::Picture& none = show(host, command({7, 7, 7, 7}, 0x112233, 0x445566));
    EXPECT_EQ(none.at(3, 3), 0xFF112233);
}

TEST_P(Gradient, StaysInsideTheScissorAndKeepsTheCallersState) {
    Host host(GetParam());
    host.bootWithPanel();
    const bool e1 = GetParam() == Generation::E1;
    const std::uint32_t scissorXy =
        e1 ? 0x1B000000U | 100U << 9U | 50U : 0x1B000000U | 100U << 11U | 50U;
    const std::uint32_t scissorSize =
        e1 ? 0x1C000000U | 200U << 10U | 100U : 0x1C000000U | 200U << 12U | 100U;
    // Alpha 0 and a tag of its own: neither hinders the gradient.
    const controller::Picture& picture =
        show(host, V{scissorXy, scissorSize, 0x10000000, 0x03000005} +
                       command({100, 50, 300, 150}, 0x404040, 0x808080));
    EXPECT_EQ(picture.at(99, 60), 0xFF000000);
    EXPECT_EQ(picture.at(100, 50), 0xFF404040);
    EXPECT_NEAR(picture.at(199, 100) & 0xFF, 0x60, 1);
    EXPECT_EQ(picture.at(300, 100), 0xFF000000);
    EXPECT_EQ(picture.at(150, 150), 0xFF000000);
    EXPECT_EQ(host.chip.frame().tags[60 * 480 + 150], 5);
}

TEST_P(Gradient, IsAnOrdinaryPieceOfListThatCanBeCopiedAndAppended) {
    Host host(GetParam());
    host.bootWithPanel();
    const controller::Picture first = show(host, command({21, 13, 455, 268}, 0xCACACA, 0xF3F3F3));
    host.send(V{cmd::dlStart, 0x26000007} + command({21, 13, 455, 268}, 0xCACACA, 0xF3F3F3));
    const std::uint32_t size = host.read16(host.at.cmdDl());
    host.send({cmd::memCpy, 100000, host.at.ramDl(), size, 0, cmd::swap});
    host.waitFrames(2);
    host.send({cmd::dlStart, 0x02FF0000, 0x26000007, 0, cmd::swap});
    host.waitFrames(2);
    EXPECT_EQ(host.chip.frame().picture.at(1, 1), 0xFFFF0000);
    host.send({cmd::dlStart, cmd::append, 100000, size, 0, cmd::swap});
    host.waitFrames(2);
    EXPECT_TRUE(host.chip.frame().picture == first);
}

// --- with alpha

struct Argb {
    double alpha, red, green, blue;
};

Argb mixed(std::uint32_t from, std::uint32_t to, double t) {
    const auto channel = [&](unsigned shift) {
        const double a = from >> shift & 0xFFU;
        const double b = to >> shift & 0xFFU;
        return a + (b - a) * t;
    };
    return {channel(24), channel(16), channel(8), channel(0)};
}

class AlphaGradient : public testing::Test {
protected:
    AlphaGradient() { host.bootWithPanel(); }

    // Over a plain colour: largest deviation of any channel.
    double worst(const Line& line, std::uint32_t from, std::uint32_t to, std::uint32_t under) {
        host.send({cmd::dlStart, 0x02000000 | under, 0x26000007, cmd::gradientA,
                   pair(line.x0, line.y0), from, pair(line.x1, line.y1), to, 0, cmd::swap});
        host.waitFrames(2);
        const controller::Picture& picture = host.chip.frame().picture;
        const double vx = line.x1 - line.x0;
        const double vy = line.y1 - line.y0;
        double largest = 0;
        for (int y = 0; y < picture.height; y += 3) {
            for (int x = 0; x < picture.width; ++x) {
                const double t = std::clamp(
                    ((x - line.x0) * vx + (y - line.y0) * vy) / (vx * vx + vy * vy), 0.0, 1.0);
                const Argb top = mixed(from, to, t);
                const auto off = [&](unsigned shift, double channel) {
                    const double below = under >> shift & 0xFFU;
                    const double wanted = below + (channel - below) * top.alpha / 255;
                    return std::abs((picture.at(x, y) >> shift & 0xFF) - wanted);
                };
                largest =
                    std::max({largest, off(16, top.red), off(8, top.green), off(0, top.blue)});
            }
        }
        return largest;
    }

    Host host{Generation::E3};
};

TEST_F(AlphaGradient, AlphaRunsAlongWithTheColour) {
    for (const Line& line : {Line{21, 13, 455, 268}, Line{455, 268, 21, 13}, Line{100, 0, 380, 0},
                             Line{0, 230, 0, 40}}) {
        EXPECT_LE(worst(line, 0x00FF8000, 0xFF0080FF, 0x406020), 4.5) << line.x0 << ',' << line.y0;
        EXPECT_LE(worst(line, 0xE0FF8000, 0x200080FF, 0x406020), 4.5) << line.x0 << ',' << line.y0;
    }
    EXPECT_TRUE(host.seen.complaints.empty());
}

TEST_F(AlphaGradient, OneColourMayRunToNothing) {
    EXPECT_LE(worst({50, 50, 400, 200}, 0xFF000000, 0x00000000, 0xFFFFFF), 3.0);
    EXPECT_LE(worst({50, 50, 400, 200}, 0x00FFFFFF, 0xFFFFFFFF, 0x000000), 3.0);
}

TEST_F(AlphaGradient, IsAGradientWhereBothAreOpaque) {
    EXPECT_LE(worst({21, 13, 455, 268}, 0xFFCA40CA, 0xFFF380F3, 0x123456), 3.0);
}

TEST_F(AlphaGradient, IsNothingWhereBothAreTransparent) {
    EXPECT_LE(worst({21, 13, 455, 268}, 0x00CA40CA, 0x00F380F3, 0x123456), 0.0);
}

TEST_F(AlphaGradient, IsPlainWhereThePointsAreOne) {
    host.send({cmd::dlStart, 0x02000000, 0x26000007, cmd::gradientA, pair(9, 9), 0x80FFFFFF,
               pair(9, 9), 0xFF0000FF, 0, cmd::swap});
    host.waitFrames(2);
    EXPECT_EQ(host.chip.frame().picture.at(5, 5), 0xFF808080);
    EXPECT_EQ(host.chip.frame().picture.at(400, 200), 0xFF808080);
}

TEST_F(AlphaGradient, FillsTheScissorAreaOnly) {
    host.send({cmd::dlStart, 0x02102030, 0x26000007, 0x1B000000U | 100U << 11U | 50U,
               0x1C000000U | 200U << 12U | 100U, cmd::gradientA, pair(100, 50), 0x80FF0000,
               pair(300, 50), 0xFF00FF00, 0, cmd::swap});
    host.waitFrames(2);
    EXPECT_EQ(host.chip.frame().picture.at(99, 60), 0xFF102030);
    EXPECT_NE(host.chip.frame().picture.at(100, 60), 0xFF102030);
    EXPECT_EQ(host.chip.frame().picture.at(300, 60), 0xFF102030);
}

} // namespace
