#include "bitmapdrawer.h"

#include "bitmapsampler.h"
#include "fixedmath.h"
#include "pixelmath.h"
#include "texels.h"
#include "work.h"

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>

namespace controller {

namespace {

// --- colours

constexpr std::array<std::uint32_t, 4> straight{swizzle::Red, swizzle::Green, swizzle::Blue,
                                                swizzle::Alpha};

std::uint32_t swizzledChannel(std::uint32_t pixel, std::uint32_t source) {
    switch (source) {
    case swizzle::One:
        return opaque;
    case swizzle::Red:
        return channel(pixel, 16);
    case swizzle::Green:
        return channel(pixel, 8);
    case swizzle::Blue:
        return channel(pixel, 0);
    case swizzle::Alpha:
        return channel(pixel, 24);
    default:
        return 0;
    }
}

std::uint32_t swizzled(std::uint32_t pixel, const std::array<std::uint32_t, 4>& sources) {
    return argb(swizzledChannel(pixel, sources[3]), swizzledChannel(pixel, sources[0]),
                swizzledChannel(pixel, sources[1]), swizzledChannel(pixel, sources[2]));
}

// Everything that is the same for all rows of one bitmap.
struct Drawing {
    PixelPipeline& pipeline;
    const BitmapTransform& transform;
    std::uint32_t color;
    const std::array<std::uint32_t, 4>& swizzle;
    const Bitmap& bitmap;
    Position corner;
    PixelRect within;
    std::vector<std::uint8_t>& alphas; // room for a row
    std::vector<std::uint32_t>& pixels;
};

RowWalk rowWalk(const Drawing& drawing, int y) {
    const BitmapTransform& m = drawing.transform;
    const std::int64_t u = std::int64_t{drawing.within.left} * subpixels - drawing.corner.x;
    const std::int64_t v = std::int64_t{y} * subpixels - drawing.corner.y;
    constexpr std::int64_t perOffsetUnit = oneTexel / 256;
    return {m.a * u + m.b * v + m.c * perOffsetUnit, m.d * u + m.e * v + m.f * perOffsetUnit,
            std::int64_t{m.a} * subpixels, std::int64_t{m.d} * subpixels,
            drawing.within.right - drawing.within.left};
}

void paintRow(const Drawing& drawing, int y, std::size_t count) {
    std::uint32_t* pixels = drawing.pixels.data();
    if (drawing.swizzle != straight) {
        std::transform(pixels, pixels + count, pixels,
                       [&](std::uint32_t p) { return swizzled(p, drawing.swizzle); });
    }
    drawing.pipeline.paint(y, drawing.within.left, count, pixels);
}

// The two kinds of texels take different ways to the pipeline.
template<typename Texels>
void drawRow(const Drawing& drawing, Sampler<Texels>& sampler, int y, std::size_t count) {
    if constexpr (std::is_same_v<typename Texels::Value, std::uint8_t>) {
        sampler.sample(rowWalk(drawing, y), drawing.alphas.data());
        if (drawing.swizzle == straight) {
            drawing.pipeline.shade(y, drawing.within.left, count, drawing.alphas.data());
            return;
        }
        std::transform(drawing.alphas.data(), drawing.alphas.data() + count, drawing.pixels.data(),
                       [](std::uint8_t alpha) { return withAlpha(0xFFFFFF, alpha); });
    } else {
        sampler.sample(rowWalk(drawing, y), drawing.pixels.data());
    }
    paintRow(drawing, y, count);
}

// At most.
std::int64_t sampleCost(const Drawing& drawing) {
    const Bitmap& bitmap = drawing.bitmap;
    const bool hard = bitmap.bilinear || bitmap.repeatX || bitmap.repeatY;
    const bool recoloured = drawing.swizzle != straight || drawing.color != 0xFFFFFFFF;
    return (hard ? cost::wrappedTexel : cost::texel) + (recoloured ? cost::recoloured : 0);
}

template<typename Texels>
void drawRows(const Drawing& drawing, BitmapRows& rows, const Texels& texels) {
    const auto count = static_cast<std::size_t>(drawing.within.right - drawing.within.left);
    drawing.alphas.resize(count);
    drawing.pixels.resize(count);
    Sampler<Texels> sampler(texels, drawing.bitmap, rows);
    Work& work = drawing.pipeline.work();
    const std::int64_t rowCost = cost::row + sampleCost(drawing) * static_cast<std::int64_t>(count);
    for (int y = drawing.within.top; y < drawing.within.bottom && !work.isTooMuch(); ++y) {
        work.add(rowCost);
        drawRow(drawing, sampler, y, count);
    }
}

void drawFormat(const Drawing& drawing, BitmapRows& rows, const Palette& palette) {
    switch (drawing.bitmap.format) {
    case format::L1:
        return drawRows(drawing, rows, LuminanceTexels<1>{});
    case format::L2:
        return drawRows(drawing, rows, LuminanceTexels<2>{});
    case format::L4:
        return drawRows(drawing, rows, LuminanceTexels<4>{});
    case format::L8:
        return drawRows(drawing, rows, LuminanceTexels<8>{});
    case format::Argb1555:
        return drawRows(drawing, rows, Argb1555Texels{});
    case format::Rgb332:
        return drawRows(drawing, rows, Rgb332Texels{});
    case format::Argb2:
        return drawRows(drawing, rows, Argb2Texels{});
    case format::Argb4:
        return drawRows(drawing, rows, Argb4Texels{});
    case format::Rgb565:
        return drawRows(drawing, rows, Rgb565Texels{});
    default:
        return drawRows(drawing, rows, PalettedTexels{palette});
    }
}

int pixelAtOrAfter(std::int64_t position) {
    return static_cast<int>(ceilQuotient(position, subpixels));
}

} // namespace

PixelRect BitmapDrawer::window(const Bitmap& bitmap, Position corner, const PixelRect& clip) {
    return {std::max(clip.left, pixelAtOrAfter(corner.x)),
            std::max(clip.top, pixelAtOrAfter(corner.y)),
            std::min(clip.right,
                     pixelAtOrAfter(corner.x + std::int64_t{bitmap.windowWidth} * subpixels)),
            std::min(clip.bottom,
                     pixelAtOrAfter(corner.y + std::int64_t{bitmap.windowHeight} * subpixels))};
}

void BitmapDrawer::draw(PixelPipeline& pipeline, const GraphicsState& state,
                        const BitmapHandle& handle, const Bitmap& bitmap, Position corner,
                        const PixelRect& within) {
    if (within.empty() || !check(bitmap)) {
        return;
    }
    const Palette& palette = isPaletted(bitmap.format)
                                 ? paletteFor(pipeline, bitmap.format, state.paletteSource)
                                 : m_palette;
    BitmapRows rows(m_memory, bitmap);
    drawFormat({pipeline, state.transform, state.color, handle.swizzle, bitmap, corner, within,
                m_alphas, m_pixels},
               rows, palette);
    if (rows.missed()) {
        m_complaints.add(Flaw::BitmapOutsideMemory, "display list: the bitmap at " +
                                                        hexadecimal(bitmap.address) +
                                                        " reaches outside memory");
    }
}

const Palette& BitmapDrawer::paletteFor(PixelPipeline& pipeline, std::uint32_t format,
                                        std::uint32_t address) {
    if (m_hasPalette && m_paletteFormat == format && m_paletteAddress == address) {
        return m_palette;
    }
    pipeline.work().add(cost::palette);
    m_hasPalette = true;
    m_paletteFormat = format;
    m_paletteAddress = address;
    if (!readPalette(m_memory, format, address, m_palette)) {
        m_complaints.add(Flaw::PaletteOutsideMemory, "display list: the palette at " +
                                                         hexadecimal(address) +
                                                         " reaches outside memory");
    }
    return m_palette;
}

bool BitmapDrawer::check(const Bitmap& bitmap) {
    if (bitmap.bitsPerTexel == 0) {
        m_complaints.add(Flaw::UnknownBitmapFormat, "display list: bitmap format " +
                                                        std::to_string(bitmap.format) +
                                                        " is not drawn");
        return false;
    }
    if (bitmap.width == 0) {
        m_complaints.add(Flaw::BitmapWithoutLayout,
                         "display list: a bitmap is drawn whose handle has no layout");
        return false;
    }
    return true;
}

} // namespace controller
