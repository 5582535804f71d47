#include "pixelpipeline.h"

#include "pixelmath.h"

#include <algorithm>
#include <cstring>

namespace controller {

namespace {

bool passes(std::uint32_t function, std::uint32_t value, std::uint32_t reference) {
    switch (function) {
    case test::Never:
        return false;
    case test::Less:
        return value < reference;
    case test::LessOrEqual:
        return value <= reference;
    case test::Greater:
        return value > reference;
    case test::GreaterOrEqual:
        return value >= reference;
    case test::Equal:
        return value == reference;
    case test::NotEqual:
        return value != reference;
    default:
        return true;
    }
}

std::uint32_t afterStencilOp(std::uint32_t operation, std::uint32_t value,
                             std::uint32_t reference) {
    switch (operation) {
    case stencilop::Zero:
        return 0;
    case stencilop::Replace:
        return reference;
    case stencilop::Increment:
        return std::min(value + 1, 255U);
    case stencilop::Decrement:
        return value == 0 ? 0 : value - 1;
    case stencilop::Invert:
        return ~value & 255;
    case stencilop::IncrementWrapping:
        return (value + 1) & 255;
    case stencilop::DecrementWrapping:
        return (value - 1) & 255;
    default:
        return value;
    }
}

std::uint32_t blendFactor(std::uint32_t factor, std::uint32_t sourceAlpha,
                          std::uint32_t destinationAlpha) {
    switch (factor) {
    case blend::One:
        return opaque;
    case blend::SrcAlpha:
        return sourceAlpha;
    case blend::DstAlpha:
        return destinationAlpha;
    case blend::OneMinusSrcAlpha:
        return opaque - sourceAlpha;
    case blend::OneMinusDstAlpha:
        return opaque - destinationAlpha;
    default:
        return 0;
    }
}

// Nothing but the usual blend into all channels.
bool isPlain(const GraphicsState& state) {
    return state.alphaFunction == test::Always && state.stencilFunction == test::Always &&
           state.stencilPass == stencilop::Keep && state.blendSource == blend::SrcAlpha &&
           state.blendDestination == blend::OneMinusSrcAlpha && state.colorMask == 0xFFFFFFFF;
}

} // namespace

void PixelPipeline::use(const GraphicsState& state) {
    m_state = &state;
    m_plain = isPlain(state);
    m_pixelCost = m_plain ? cost::plainPixel : cost::fragment;
    const Scissor& scissor = state.scissor;
    m_clip = {scissor.x, scissor.y, std::min(scissor.x + scissor.width, m_canvas.width()),
              std::min(scissor.y + scissor.height, m_canvas.height())};
    if (m_limit) {
        m_clip = {std::max(m_clip.left, m_limit->left), std::max(m_clip.top, m_limit->top),
                  std::min(m_clip.right, m_limit->right), std::min(m_clip.bottom, m_limit->bottom)};
    }
}

void PixelPipeline::limitTo(const PixelRect& limit) {
    m_limit = limit;
}

void PixelPipeline::clear(bool color, bool stencil, bool tag) {
    if (m_clip.empty()) {
        return;
    }
    const auto count = static_cast<std::size_t>(m_clip.right - m_clip.left);
    std::uint32_t* pixels = m_canvas.pixels();
    std::uint8_t* stencils = m_canvas.stencil();
    const std::uint32_t mask = m_state->colorMask;
    const std::uint32_t stencilMask = m_state->stencilWriteMask;
    const int kinds = (color ? 1 : 0) + (stencil ? 1 : 0) + (tag ? 1 : 0);
    const std::int64_t rowCost =
        cost::row + cost::clearedPixel * kinds * static_cast<std::int64_t>(count);
    for (int y = m_clip.top; y < m_clip.bottom && !m_work.isTooMuch(); ++y) {
        m_work.add(rowCost);
        m_canvas.noteDrawn(y, m_clip.left, m_clip.right);
        const std::size_t first = m_canvas.index(m_clip.left, y);
        if (color && mask == 0xFFFFFFFF) {
            std::fill_n(pixels + first, count, m_state->clearColor);
        } else if (color) {
            for (std::size_t i = first; i < first + count; ++i) {
                pixels[i] = (pixels[i] & ~mask) | (m_state->clearColor & mask);
            }
        }
        if (stencil && stencilMask == 255) {
            std::memset(stencils + first, m_state->clearStencil, count);
        } else if (stencil) {
            for (std::size_t i = first; i < first + count; ++i) {
                stencils[i] = static_cast<std::uint8_t>((stencils[i] & ~stencilMask) |
                                                        (m_state->clearStencil & stencilMask));
            }
        }
        if (tag && m_state->tagging) {
            std::memset(m_canvas.tags() + first, m_state->clearTag, count);
        }
    }
}

void PixelPipeline::fill(int y, int left, int right, std::uint8_t coverage) {
    if (left >= right) {
        return;
    }
    const auto count = static_cast<std::size_t>(right - left);
    const std::size_t first = startRow(y, left, count);
    const std::uint32_t alpha = multiplied(alphaOf(m_state->color), coverage);
    const std::uint32_t color = withAlpha(m_state->color, alpha);
    if (!m_plain) {
        for (std::size_t i = first; i < first + count; ++i) {
            drawFragment(i, color);
        }
        return;
    }
    if (alpha == opaque) {
        std::fill_n(m_canvas.pixels() + first, count, color);
    } else {
        m_loops.blendAlike(m_canvas.pixels() + first, count, color);
    }
    fillTags(first, count);
}

void PixelPipeline::cover(int y, int left, std::size_t count, const std::uint8_t* coverage) {
    const std::size_t first = startRow(y, left, count);
    const std::uint32_t color = m_state->color;
    if (!m_plain) {
        for (std::size_t i = 0; i < count; ++i) {
            if (coverage[i] != 0) {
                drawFragment(first + i, withAlpha(color, multiplied(alphaOf(color), coverage[i])));
            }
        }
        return;
    }
    m_loops.blendColor(m_canvas.pixels() + first, count, color, coverage);
    if (m_state->tagging) {
        m_loops.tagCovered(m_canvas.tags() + first, count, coverage, m_state->tag);
    }
}

void PixelPipeline::shade(int y, int left, std::size_t count, const std::uint8_t* alphas) {
    const std::size_t first = startRow(y, left, count);
    const std::uint32_t color = m_state->color;
    if (!m_plain) {
        for (std::size_t i = 0; i < count; ++i) {
            drawFragment(first + i, withAlpha(color, multiplied(alphaOf(color), alphas[i])));
        }
        return;
    }
    m_loops.blendColor(m_canvas.pixels() + first, count, color, alphas);
    fillTags(first, count);
}

void PixelPipeline::paint(int y, int left, std::size_t count, std::uint32_t* pixels) {
    const std::size_t first = startRow(y, left, count);
    if (m_state->color != 0xFFFFFFFF) {
        m_loops.modulate(pixels, count, m_state->color);
    }
    if (!m_plain) {
        for (std::size_t i = 0; i < count; ++i) {
            drawFragment(first + i, pixels[i]);
        }
        return;
    }
    m_loops.blendPixels(m_canvas.pixels() + first, count, pixels);
    fillTags(first, count);
}

// A row of pixels is about to be drawn: what it costs, and where in the canvas it begins.
std::size_t PixelPipeline::startRow(int y, int left, std::size_t count) {
    m_work.add(cost::row + m_pixelCost * static_cast<std::int64_t>(count));
    m_canvas.noteDrawn(y, left, left + static_cast<int>(count));
    return m_canvas.index(left, y);
}

void PixelPipeline::fillTags(std::size_t first, std::size_t count) {
    if (m_state->tagging) {
        std::memset(m_canvas.tags() + first, m_state->tag, count);
    }
}

void PixelPipeline::drawFragment(std::size_t at, std::uint32_t source) {
    if (!passes(m_state->alphaFunction, alphaOf(source), m_state->alphaReference) ||
        !passesStencil(at)) {
        return;
    }
    const std::uint32_t mask = m_state->colorMask;
    std::uint32_t& pixel = m_canvas.pixels()[at];
    pixel = (pixel & ~mask) | (mixed(source, pixel) & mask);
    if (m_state->tagging) {
        m_canvas.tags()[at] = m_state->tag;
    }
}

bool PixelPipeline::passesStencil(std::size_t at) {
    const std::uint32_t mask = m_state->stencilCompareMask;
    const std::uint32_t writeMask = m_state->stencilWriteMask;
    std::uint8_t& stencil = m_canvas.stencil()[at];
    const std::uint32_t old = stencil;
    const bool passed =
        passes(m_state->stencilFunction, m_state->stencilReference & mask, old & mask);
    const std::uint32_t next = afterStencilOp(passed ? m_state->stencilPass : m_state->stencilFail,
                                              old, m_state->stencilReference);
    stencil = static_cast<std::uint8_t>((old & ~writeMask) | (next & writeMask));
    return passed;
}

std::uint32_t PixelPipeline::mixed(std::uint32_t source, std::uint32_t destination) const {
    const std::uint32_t sourceFactor =
        blendFactor(m_state->blendSource, alphaOf(source), alphaOf(destination));
    const std::uint32_t destinationFactor =
        blendFactor(m_state->blendDestination, alphaOf(source), alphaOf(destination));
    std::uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const std::uint32_t sum = channel(source, shift) * sourceFactor +
                                  channel(destination, shift) * destinationFactor + 128;
        result |= std::min((sum + (sum >> 8)) >> 8, 255U) << shift;
    }
    return result;
}

} // namespace controller
