#include "gradient.h"

#include "dlwords.h"
#include "fixedmath.h"

#include <algorithm>
#include <array>
#include <cstdlib>

// How a gradient becomes display-list words.
//
// The area is filled with rgb0. Over it, in rgb1, goes a bitmap whose alpha rises from 0 to full
// along the vector: the ROM's grey ramp, one texel wide and as high as the ramp is long, sampled
// through a transform whose first row is 0 and whose second row is the position along the vector.
// Before its first texel the bitmap is transparent, which leaves rgb0. Where it ends, an edge strip
// in rgb1 covers everything beyond. The strip's edge is derived from the transform as rounded for
// its words, and starts early enough that no pixel which misses the ramp's last texel is left with
// the strip's smoothed edge alone.
//
// Steep gradients use a coarser ramp (every second, fourth ... texel), as the transform's words
// hold no large factors, and interpolate between its texels. There a pixel is much of the way, so
// the bitmap goes on with full texels, and the strip begins in the midst of these.

namespace controller {

namespace {

constexpr std::int64_t one = 256;              // of the transform's 8 fraction bits
constexpr std::int64_t steepest = 15 * one;    // texels a pixel, x and y together
constexpr std::int64_t offsetLimit = 0x7FFFFF; // of the transform's constant term
constexpr std::int64_t highestBitmap = 511;    // in every generation
constexpr std::uint32_t bilinear = 1U << 20U;  // in BITMAP_SIZE
constexpr std::uint32_t laterFractionBits = 2; // of vertices in E2 and E3: reach 4096 pixels

// The position along the ramp of pixel (x, y), in texels with 8 fraction bits: dx*x + dy*y + start.
struct Slope {
    std::int64_t dx = 0;
    std::int64_t dy = 0;
    std::int64_t start = 0;
    std::int64_t texels = 0; // of the ramp in use
    std::int64_t rows = 0;   // of the bitmap: these and perhaps full ones
    std::uint32_t step = 1;  // between them, in texels of the ROM's ramp

    std::int64_t perPixel() const { return std::abs(dx) + std::abs(dy); }
    bool isSteep() const { return perPixel() > one; }
    std::int64_t at(std::int64_t x, std::int64_t y) const { return dx * x + dy * y + start; }
};

Slope slopeOf(const Gradient& gradient, const RomRamp& ramp) {
    const std::int64_t vx = gradient.x1 - gradient.x0;
    const std::int64_t vy = gradient.y1 - gradient.y0;
    const std::int64_t square = vx * vx + vy * vy;
    Slope slope;
    for (slope.step = 1; slope.step < ramp.length; slope.step *= 2) {
        slope.texels = ramp.length / slope.step;
        slope.dx = roundedQuotient(slope.texels * one * vx, square);
        slope.dy = roundedQuotient(slope.texels * one * vy, square);
        if (slope.perPixel() <= steepest) {
            break;
        }
    }
    slope.rows = slope.isSteep() ? std::min<std::int64_t>(ramp.line / slope.step, highestBitmap)
                                 : slope.texels;
    // Exact in the middle of the vector, so that rounding shows least at its ends.
    slope.start = (slope.texels * one - slope.dx * (gradient.x0 + gradient.x1) -
                   slope.dy * (gradient.y0 + gradient.y1)) /
                  2;
    return slope;
}

class GradientWriter {
public:
    GradientWriter(Words& words, Generation generation, int width, int height)
        : m_words(words), m_generation(generation), m_width(width), m_height(height) {}

    void write(const RomRamp& ramp, std::uint32_t handle, const Gradient& gradient);

private:
    void put(std::uint32_t word) { m_words.push_back(word); }
    void setUp();
    void fill(std::uint32_t rgb);
    void drawRamp(const RomRamp& ramp, std::uint32_t handle, const Slope& slope);
    void drawFarSide(const Slope& slope, std::int64_t limit);
    int fractions() const { return m_generation == Generation::E1 ? 16 : 1 << laterFractionBits; }
    void vertexAlongX(const Slope& slope, std::int64_t limit, int x);
    void vertexAlongY(const Slope& slope, std::int64_t limit, int y);

    Words& m_words;
    Generation m_generation;
    int m_width;
    int m_height;
};

// Everything the picture of a gradient depends on, whatever the caller has set.
void GradientWriter::setUp() {
    if (m_generation != Generation::E1) {
        put(dl::vertexFormat(laterFractionBits));
        put(dl::vertexTranslateX(0));
        put(dl::vertexTranslateY(0));
    }
    put(dl::colorA(255));
    put(dl::blendFunc(blend::SrcAlpha, blend::OneMinusSrcAlpha));
}

void GradientWriter::fill(std::uint32_t rgb) {
    constexpr int nearCorner = -256; // outside any panel, whatever the vertex format
    constexpr int farCorner = 0x3FFF;
    put(dl::colorRgb(rgb));
    put(dl::lineWidth(subpixels));
    put(dl::begin(primitive::Rects));
    put(dl::vertex2f(nearCorner, nearCorner));
    put(dl::vertex2f(farCorner, farCorner));
    put(dl::end());
}

void GradientWriter::drawRamp(const RomRamp& ramp, std::uint32_t handle, const Slope& slope) {
    const auto height = static_cast<std::uint32_t>(slope.rows);
    put(dl::bitmapHandle(handle));
    put(dl::bitmapSource(ramp.address));
    put(dl::bitmapLayout(format::L8, slope.step, height));
    put(dl::bitmapSize(0, 0) | (slope.isSteep() ? bilinear : 0)); // as large as can be
    if (m_generation != Generation::E1) {
        put(dl::bitmapLayoutH(slope.step, height));
        put(dl::bitmapSizeH(0, 0));
    }
    const std::array<std::int64_t, 6> transform = {0, 0, 0, slope.dx, slope.dy, slope.start};
    for (unsigned i = 0; i < transform.size(); ++i) {
        put(dl::bitmapTransform(i, static_cast<std::int32_t>(transform[i])));
    }
    put(dl::begin(primitive::Bitmaps));
    put(dl::vertex2ii(0, 0, handle, 0));
    put(dl::end());
}

// The point of the line at(x, y) == limit with this x, or with this y.
void GradientWriter::vertexAlongX(const Slope& slope, std::int64_t limit, int x) {
    const std::int64_t y =
        roundedQuotient((limit - slope.start - slope.dx * x) * fractions(), slope.dy);
    put(dl::vertex2f(x * fractions(),
                     static_cast<std::int32_t>(clampTo<std::int64_t>(y, -0x4000, 0x3FFF))));
}

void GradientWriter::vertexAlongY(const Slope& slope, std::int64_t limit, int y) {
    const std::int64_t x =
        roundedQuotient((limit - slope.start - slope.dy * y) * fractions(), slope.dx);
    put(dl::vertex2f(static_cast<std::int32_t>(clampTo<std::int64_t>(x, -0x4000, 0x3FFF)),
                     y * fractions()));
}

void GradientWriter::drawFarSide(const Slope& slope, std::int64_t limit) {
    if (std::abs(slope.dy) >= std::abs(slope.dx)) {
        put(dl::begin(slope.dy > 0 ? primitive::EdgeStripB : primitive::EdgeStripA));
        vertexAlongX(slope, limit, -1);
        vertexAlongX(slope, limit, m_width + 1);
    } else {
        put(dl::begin(slope.dx > 0 ? primitive::EdgeStripR : primitive::EdgeStripL));
        vertexAlongY(slope, limit, -1);
        vertexAlongY(slope, limit, m_height + 1);
    }
    put(dl::end());
}

void GradientWriter::write(const RomRamp& ramp, std::uint32_t handle, const Gradient& gradient) {
    setUp();
    const bool isPoint = gradient.x0 == gradient.x1 && gradient.y0 == gradient.y1;
    if (isPoint || gradient.rgb0 == gradient.rgb1) {
        fill(gradient.rgb0);
        return;
    }
    const Slope slope = slopeOf(gradient, ramp);
    // Where the strip begins: a pixel is sampled at its top left corner, so the rest of it may
    // lie up to one pixel further back; a quarter pixel more for the rounding of vertices.
    const std::int64_t limit =
        slope.isSteep() ? (slope.texels + slope.rows) * one / 2
                        : slope.texels * one + std::min<std::int64_t>(0, slope.dx) +
                              std::min<std::int64_t>(0, slope.dy) - (slope.perPixel() + 3) / 4;
    const auto [lowest, highest] = std::minmax(
        {slope.at(0, 0), slope.at(m_width, 0), slope.at(0, m_height), slope.at(m_width, m_height)});
    if (lowest >= limit) {
        fill(gradient.rgb1);
        return;
    }
    fill(gradient.rgb0);
    if (highest <= 0 || std::abs(slope.start) > offsetLimit) {
        return; // all of the panel lies before the vector
    }
    put(dl::colorRgb(gradient.rgb1));
    drawRamp(ramp, handle, slope);
    if (highest >= limit) {
        drawFarSide(slope, limit);
    }
}

} // namespace

void appendGradient(Words& words, Generation generation, const RomRamp& ramp,
                    std::uint32_t scratchHandle, int width, int height, const Gradient& gradient) {
    words.push_back(dl::saveContext());
    GradientWriter(words, generation, width, height).write(ramp, scratchHandle, gradient);
    words.push_back(dl::restoreContext());
}

} // namespace controller
