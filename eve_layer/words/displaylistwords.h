#pragma once

// Words of the display-list instructions that every controller generation lays out alike. The
// opcode is in bits 24..31 (30..31 for the vertices); arguments are cut to the width of their
// field. Enumerated arguments (primitive, format, filter, wrap) are registry values.
//
// The instructions that depend on the generation are in Gpu.h.

#include <cstdint>

// The end of the list.
constexpr uint32_t DISPLAY() {
    return 0x00000000U;
}

// rgb: 0xRRGGBB.
constexpr uint32_t CLEAR_COLOR_RGB(uint32_t rgb) {
    return 0x02000000U | (rgb & 0xFFFFFFU);
}

constexpr uint32_t TAG(uint32_t tag) {
    return 0x03000000U | (tag & 0xFFU);
}

// rgb: 0xRRGGBB.
constexpr uint32_t COLOR_RGB(uint32_t rgb) {
    return 0x04000000U | (rgb & 0xFFFFFFU);
}

constexpr uint32_t COLOR_RGB(uint32_t red, uint32_t green, uint32_t blue) {
    return COLOR_RGB(((red & 0xFFU) << 16) | ((green & 0xFFU) << 8) | (blue & 0xFFU));
}

constexpr uint32_t BITMAP_HANDLE(uint32_t handle) {
    return 0x05000000U | (handle & 0x1FU);
}

// linestride: bytes per row; height: rows. On EVE_2 and EVE_3 BITMAP_LAYOUT_H() has the upper bits.
constexpr uint32_t BITMAP_LAYOUT(uint32_t format, uint32_t linestride, uint32_t height) {
    return 0x07000000U | ((format & 0x1FU) << 19) | ((linestride & 0x3FFU) << 9) |
           (height & 0x1FFU);
}

// width, height: the window that a vertex fills on the screen, in pixels. On EVE_2 and EVE_3
// BITMAP_SIZE_H() has the upper bits.
constexpr uint32_t BITMAP_SIZE(uint32_t filter, uint32_t wrapx, uint32_t wrapy, uint32_t width,
                               uint32_t height) {
    return 0x08000000U | ((filter & 1U) << 20) | ((wrapx & 1U) << 19) | ((wrapy & 1U) << 18) |
           ((width & 0x1FFU) << 9) | (height & 0x1FFU);
}

// size: the point's radius in 1/16 pixel.
constexpr uint32_t POINT_SIZE(uint32_t size) {
    return 0x0D000000U | (size & 0x1FFFU);
}

// width: half the line's width in 1/16 pixel.
constexpr uint32_t LINE_WIDTH(uint32_t width) {
    return 0x0E000000U | (width & 0xFFFU);
}

// alpha: 0 transparent .. 255 opaque.
constexpr uint32_t COLOR_A(uint32_t alpha) {
    return 0x10000000U | (alpha & 0xFFU);
}

// mask: 1 while what is drawn takes the current tag, 0 while it does not.
constexpr uint32_t TAG_MASK(uint32_t mask) {
    return 0x14000000U | (mask & 1U);
}

constexpr uint32_t BEGIN(uint32_t primitive) {
    return 0x1F000000U | (primitive & 0xFU);
}

constexpr uint32_t END() {
    return 0x21000000U;
}

constexpr uint32_t SAVE_CONTEXT() {
    return 0x22000000U;
}

constexpr uint32_t RESTORE_CONTEXT() {
    return 0x23000000U;
}

// Which buffers to clear, 1 or 0 each.
constexpr uint32_t CLEAR(uint32_t colour, uint32_t stencil, uint32_t tag) {
    return 0x26000000U | ((colour & 1U) << 2) | ((stencil & 1U) << 1) | (tag & 1U);
}

// x, y: 1/16 pixel, -16384..16383.
constexpr uint32_t VERTEX2F(int32_t x, int32_t y) {
    return 0x40000000U | ((static_cast<uint32_t>(x) & 0x7FFFU) << 15) |
           (static_cast<uint32_t>(y) & 0x7FFFU);
}

// x, y: pixels, 0..511.
constexpr uint32_t VERTEX2II(uint32_t x, uint32_t y, uint32_t handle, uint32_t cell) {
    return 0x80000000U | ((x & 0x1FFU) << 21) | ((y & 0x1FFU) << 12) | ((handle & 0x1FU) << 7) |
           (cell & 0x7FU);
}
