#include "gradient.h"

#include "dlwords.h"
#include "fixedmath.h"
#include "rampslope.h"

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
// With alpha, what runs along is the pixels' own alpha, which then says how much of a plain colour
// is added everywhere:
//
//   alpha := A;  colour := colour * (1 - A) + A * (what both colours have in common);
//   alpha := A * (1 - t);  colour += alpha * (what color0 has more);
//   alpha := A * t;        colour += alpha * (what color1 has more).
//
// A runs from one alpha to the other and t from 0 to 1. Alpha is made by laying ramps over what is
// there, as a gradient without alpha is, so that it does not matter where ramp and strip overlap.
//
// In steep gradients a pixel is much of the way, so the bitmap goes on with full texels, and the
// strip begins in the midst of these. The steepest use a coarser ramp (every second, fourth ...
// texel), as the transform's words hold no larger numbers, and interpolate between its texels.

namespace controller {

namespace {

constexpr std::uint32_t bilinear = 1U << 20U;  // in BITMAP_SIZE
constexpr std::uint32_t laterFractionBits = 2; // of vertices in E2 and E3: reach 4096 pixels

// The colour, or the alpha, or both.
namespace channels {
constexpr std::uint32_t alpha = 1;
constexpr std::uint32_t color = 14;
} // namespace channels

constexpr std::uint32_t opaque = 255;

std::uint32_t alphaOf(std::uint32_t argb) {
    return argb >> 24U;
}

// Channel by channel, what `color` has more than `other`.
std::uint32_t excess(std::uint32_t color, std::uint32_t other) {
    std::uint32_t result = 0;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        const std::uint32_t a = color >> shift & 0xFFU;
        const std::uint32_t b = other >> shift & 0xFFU;
        result |= (a > b ? a - b : 0U) << shift;
    }
    return result;
}

Gradient reversed(const Gradient& gradient) {
    return {gradient.x1, gradient.y1, gradient.color1, gradient.x0, gradient.y0, gradient.color0};
}

class GradientWriter {
public:
    GradientWriter(Words& words, const GradientCanvas& canvas)
        : m_words(words), m_generation(canvas.generation), m_canvas(canvas), m_width(canvas.width),
          m_height(canvas.height) {}

    void write(const Gradient& gradient);
    void writeWithAlpha(const Gradient& given);

private:
    // A ramp on this canvas: how far it reaches.
    struct Layer {
        RampSlope slope;
        std::int64_t limit = 0; // where the strip begins
        bool isEverything = false;
        bool isNothing = false;
        bool reachesStrip = false;
    };

    void put(std::uint32_t word) { m_words.push_back(word); }
    void setUp();
    void fill();
    void fill(std::uint32_t rgb);
    Layer layerOf(const Gradient& gradient) const;
    void drawLayer(const Layer& layer);
    void drawRamp(const RampSlope& slope);
    void drawFarSide(const RampSlope& slope, std::int64_t limit);
    void layOver(const Gradient& gradient);
    void runAlpha(const Gradient& gradient);
    void addColor(std::uint32_t rgb);
    void addExcess(const Gradient& gradient);
    int fractions() const { return m_generation == Generation::E1 ? 16 : 1 << laterFractionBits; }
    void vertexAlongX(const RampSlope& slope, std::int64_t limit, int x);
    void vertexAlongY(const RampSlope& slope, std::int64_t limit, int y);

    Words& m_words;
    Generation m_generation;
    GradientCanvas m_canvas;
    int m_width;
    int m_height;
    bool m_smooth = true; // interpolates between the texels of coarse ramps
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
    put(dl::colorRgb(rgb));
    fill();
}

void GradientWriter::fill() {
    constexpr int nearCorner = -256; // outside any panel, whatever the vertex format
    constexpr int farCorner = 0x3FFF;
    put(dl::lineWidth(subpixels));
    put(dl::begin(primitive::Rects));
    put(dl::vertex2f(nearCorner, nearCorner));
    put(dl::vertex2f(farCorner, farCorner));
    put(dl::end());
}

void GradientWriter::drawRamp(const RampSlope& slope) {
    const std::uint32_t handle = m_canvas.scratchHandle;
    const auto height = static_cast<std::uint32_t>(slope.rows);
    put(dl::bitmapHandle(handle));
    put(dl::bitmapSource(m_canvas.ramp.address));
    put(dl::bitmapLayout(format::L8, slope.step, height));
    put(dl::bitmapSize(0, 0) | (m_smooth && slope.step > 1 ? bilinear : 0)); // as large as can be
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
void GradientWriter::vertexAlongX(const RampSlope& slope, std::int64_t limit, int x) {
    const std::int64_t y =
        roundedQuotient((limit - slope.start - slope.dx * x) * fractions(), slope.dy);
    put(dl::vertex2f(x * fractions(),
                     static_cast<std::int32_t>(clampTo<std::int64_t>(y, -0x4000, 0x3FFF))));
}

void GradientWriter::vertexAlongY(const RampSlope& slope, std::int64_t limit, int y) {
    const std::int64_t x =
        roundedQuotient((limit - slope.start - slope.dy * y) * fractions(), slope.dx);
    put(dl::vertex2f(static_cast<std::int32_t>(clampTo<std::int64_t>(x, -0x4000, 0x3FFF)),
                     y * fractions()));
}

void GradientWriter::drawFarSide(const RampSlope& slope, std::int64_t limit) {
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

GradientWriter::Layer GradientWriter::layerOf(const Gradient& gradient) const {
    Layer layer;
    layer.slope = rampSlope(gradient, m_canvas);
    const RampSlope& slope = layer.slope;
    // Where the strip begins: a pixel is sampled at its top left corner, so the rest of it may
    // lie up to one pixel further back; a quarter pixel more for the rounding of vertices.
    layer.limit = slope.isSteep()
                      ? (slope.texels + slope.rows) * RampSlope::one / 2
                      : slope.texels * RampSlope::one + std::min<std::int64_t>(0, slope.dx) +
                            std::min<std::int64_t>(0, slope.dy) - (slope.perPixel() + 3) / 4;
    const auto [lowest, highest] = std::minmax(
        {slope.at(0, 0), slope.at(m_width, 0), slope.at(0, m_height), slope.at(m_width, m_height)});
    layer.isEverything = lowest >= layer.limit;
    layer.isNothing = highest <= 0 || !slope.canStart();
    layer.reachesStrip = highest >= layer.limit;
    return layer;
}

void GradientWriter::drawLayer(const Layer& layer) {
    drawRamp(layer.slope);
    if (layer.reachesStrip) {
        drawFarSide(layer.slope, layer.limit);
    }
}

void GradientWriter::write(const Gradient& gradient) {
    setUp();
    const bool isPoint = gradient.x0 == gradient.x1 && gradient.y0 == gradient.y1;
    if (isPoint || gradient.color0 == gradient.color1) {
        fill(gradient.color0);
        return;
    }
    const Layer layer = layerOf(gradient);
    if (layer.isEverything) {
        fill(gradient.color1);
        return;
    }
    fill(gradient.color0);
    if (!layer.isNothing) { // else all of the panel lies before the vector
        put(dl::colorRgb(gradient.color1));
        drawLayer(layer);
    }
}

// --- with alpha

void GradientWriter::layOver(const Gradient& gradient) {
    const Layer layer = layerOf(gradient);
    if (layer.isEverything) {
        fill();
    } else if (!layer.isNothing) {
        drawLayer(layer);
    }
}

// Alpha from color0's to color1's, the lower one first: 0 to 255, of that as much as they differ,
// and the lower one added.
void GradientWriter::runAlpha(const Gradient& gradient) {
    const std::uint32_t low = alphaOf(gradient.color0);
    const std::uint32_t high = alphaOf(gradient.color1);
    if (low > high) {
        runAlpha(reversed(gradient));
        return;
    }
    put(dl::colorMask(channels::alpha));
    put(dl::clearColorA(low == high ? low : 0));
    put(dl::clear(true, false, false));
    if (low == high) {
        return;
    }
    put(dl::blendFunc(blend::One, blend::OneMinusSrcAlpha));
    put(dl::colorA(opaque));
    layOver(gradient);
    if (high - low < opaque) {
        put(dl::blendFunc(blend::Zero, blend::SrcAlpha));
        put(dl::colorA(high - low));
        fill(white);
    }
    if (low > 0) {
        put(dl::blendFunc(blend::One, blend::One));
        put(dl::colorA(low));
        fill(white);
    }
}

void GradientWriter::addColor(std::uint32_t rgb) {
    if (rgb == 0) {
        return;
    }
    put(dl::colorMask(channels::color));
    put(dl::blendFunc(blend::DstAlpha, blend::One));
    fill(rgb);
}

// Adds what color0 has more than color1, as far as that is there, from point 0 to point 1.
void GradientWriter::addExcess(const Gradient& gradient) {
    const std::uint32_t more = excess(gradient.color0, gradient.color1);
    if (more == 0) {
        return;
    }
    runAlpha(gradient);
    put(dl::blendFunc(blend::Zero, blend::OneMinusSrcAlpha));
    put(dl::colorA(opaque));
    layOver(gradient);
    addColor(more);
}

void GradientWriter::writeWithAlpha(const Gradient& given) {
    Gradient gradient = given;
    m_smooth = false; // four ramps over the panel are work enough for a frame
    setUp();
    if (gradient.x0 == gradient.x1 && gradient.y0 == gradient.y1) {
        gradient.color1 = gradient.color0;
        gradient.x1 = gradient.x0 + 1; // any direction will do
    }
    runAlpha(gradient);
    put(dl::colorMask(channels::color));
    put(dl::blendFunc(blend::Zero, blend::OneMinusDstAlpha));
    fill(white);
    const std::uint32_t rgb = gradient.color0 & white;
    addColor(rgb - excess(gradient.color0, gradient.color1));
    addExcess(gradient);
    addExcess(reversed(gradient));
}

} // namespace

void appendGradient(Words& words, const GradientCanvas& canvas, const Gradient& gradient) {
    words.push_back(dl::saveContext());
    GradientWriter(words, canvas).write(gradient);
    words.push_back(dl::restoreContext());
}

void appendAlphaGradient(Words& words, const GradientCanvas& canvas, const Gradient& gradient) {
    words.push_back(dl::saveContext());
    GradientWriter(words, canvas).writeWithAlpha(gradient);
    words.push_back(dl::restoreContext());
}

} // namespace controller
