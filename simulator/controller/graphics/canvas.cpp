#include "canvas.h"

#include <algorithm>
#include <cstring>

namespace controller {

// --- ChangedPixels

void ChangedPixels::start(int width, int height) {
    m_width = width;
    m_rows.assign(static_cast<std::size_t>(height), {width, 0});
}

void ChangedPixels::add(const ChangedPixels& others) {
    for (std::size_t y = 0; y < m_rows.size(); ++y) {
        m_rows[y].left = std::min(m_rows[y].left, others.m_rows[y].left);
        m_rows[y].right = std::max(m_rows[y].right, others.m_rows[y].right);
    }
}

void ChangedPixels::addAll() {
    std::fill(m_rows.begin(), m_rows.end(), Row{0, m_width});
}

// --- Canvas

void Canvas::start(int width, int height) {
    m_width = width;
    m_height = height;
    const std::size_t area = index(0, height);
    m_now.pixels.assign(area, 0);
    m_now.tags.assign(area, 0);
    m_now.stencil.assign(area, 0);
    m_sinceKept.start(width, height);
    m_sinceKept.addAll();
    m_sinceShown.start(width, height);
}

void Canvas::Layers::copy(const Layers& from, const ChangedPixels& which) {
    pixels.resize(from.pixels.size());
    tags.resize(from.tags.size());
    stencil.resize(from.stencil.size());
    which.forEachRow([&](std::size_t first, std::size_t count) {
        std::memcpy(&pixels[first], &from.pixels[first], count * sizeof pixels[0]);
        std::memcpy(&tags[first], &from.tags[first], count);
        std::memcpy(&stencil[first], &from.stencil[first], count);
    });
}

void Canvas::keep() {
    m_kept.copy(m_now, m_sinceKept);
    m_sinceShown.add(m_sinceKept);
    m_sinceKept.clear();
}

void Canvas::takeBack() {
    m_now.copy(m_kept, m_sinceKept);
    m_sinceShown.add(m_sinceKept);
    m_sinceKept.clear();
}

void Canvas::show(Frame& frame) {
    frame.picture.width = m_width;
    frame.picture.height = m_height;
    frame.picture.pixels.resize(m_now.pixels.size());
    frame.tags.resize(m_now.tags.size());
    m_sinceShown.add(m_sinceKept);
    m_sinceShown.forEachRow([&](std::size_t first, std::size_t count) {
        const std::uint32_t* from = &m_now.pixels[first];
        std::uint32_t* to = &frame.picture.pixels[first];
        for (std::size_t i = 0; i < count; ++i) {
            to[i] = from[i] | 0xFF000000;
        }
        std::memcpy(&frame.tags[first], &m_now.tags[first], count);
    });
    m_sinceShown.clear();
}

} // namespace controller
