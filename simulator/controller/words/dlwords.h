#pragma once

#include "displaylist.h"
#include "generation.h"

#include <cstdint>

// Display-list words, as the coprocessor composes them: `code` is from namespace opcode,
// `primitive` from namespace primitive. Arguments are cut to their fields.

namespace controller::dl {

constexpr std::uint32_t word(std::uint32_t code, std::uint32_t operands) {
    return (code << 24U) | operands;
}

constexpr std::uint32_t display() {
    return 0;
}
constexpr std::uint32_t bitmapSource(std::uint32_t address) {
    return word(opcode::BitmapSource, address & 0x3FFFFFU);
}
constexpr std::uint32_t paletteSource(std::uint32_t address) {
    return word(opcode::PaletteSource, address & 0x3FFFFFU);
}
constexpr std::uint32_t clearColorRgb(std::uint32_t rgb) {
    return word(opcode::ClearColorRgb, rgb & 0xFFFFFFU);
}
constexpr std::uint32_t clearColorA(std::uint32_t value) {
    return word(opcode::ClearColorA, value & 0xFFU);
}
constexpr std::uint32_t tag(std::uint32_t value) {
    return word(opcode::Tag, value & 0xFFU);
}
constexpr std::uint32_t colorRgb(std::uint32_t rgb) {
    return word(opcode::ColorRgb, rgb & 0xFFFFFFU);
}
constexpr std::uint32_t bitmapHandle(std::uint32_t handle) {
    return word(opcode::BitmapHandle, handle & 0x1FU);
}
constexpr std::uint32_t cell(std::uint32_t value) {
    return word(opcode::Cell, value & 0x7FU);
}
constexpr std::uint32_t bitmapLayout(std::uint32_t format, std::uint32_t stride,
                                     std::uint32_t height) {
    return word(opcode::BitmapLayout,
                ((format & 0x1FU) << 19U) | ((stride & 0x3FFU) << 9U) | (height & 0x1FFU));
}
constexpr std::uint32_t bitmapLayoutH(std::uint32_t stride, std::uint32_t height) {
    return word(opcode::BitmapLayoutH, (((stride >> 10U) & 3U) << 2U) | ((height >> 9U) & 3U));
}
// Filter NEAREST, wrapping BORDER in both directions.
constexpr std::uint32_t bitmapSize(std::uint32_t width, std::uint32_t height) {
    return word(opcode::BitmapSize, ((width & 0x1FFU) << 9U) | (height & 0x1FFU));
}
constexpr std::uint32_t bitmapSizeH(std::uint32_t width, std::uint32_t height) {
    return word(opcode::BitmapSizeH, (((width >> 9U) & 3U) << 2U) | ((height >> 9U) & 3U));
}
constexpr std::uint32_t blendFunc(std::uint32_t source, std::uint32_t destination) {
    return word(opcode::BlendFunc, ((source & 7U) << 3U) | (destination & 7U));
}
// Radius in 1/16 pixel.
constexpr std::uint32_t pointSize(std::uint32_t size) {
    return word(opcode::PointSize, size & 0x1FFFU);
}
// Half the width in 1/16 pixel.
constexpr std::uint32_t lineWidth(std::uint32_t width) {
    return word(opcode::LineWidth, width & 0xFFFU);
}
constexpr std::uint32_t colorA(std::uint32_t alpha) {
    return word(opcode::ColorA, alpha & 0xFFU);
}
constexpr std::uint32_t tagMask(std::uint32_t mask) {
    return word(opcode::TagMask, mask & 1U);
}
// BITMAP_TRANSFORM_A .. _F for index 0 .. 5.
// The constant term of a transform: signed 15.8 in 24 bits, in every generation.
constexpr std::int64_t largestTransformOffset = 0x7FFFFF;
constexpr std::uint32_t bitmapTransform(unsigned index, std::int32_t value) {
    const bool offset = index == 2 || index == 5;
    return word(opcode::BitmapTransformA + index,
                static_cast<std::uint32_t>(value) & (offset ? 0xFFFFFFU : 0x1FFFFU));
}
// The scissor words differ in field width: E1 9 and 10 bits, later 11 and 12.
constexpr std::uint32_t scissorXy(Generation generation, std::uint32_t x, std::uint32_t y) {
    return generation == Generation::E1
               ? word(opcode::ScissorXy, ((x & 0x1FFU) << 9U) | (y & 0x1FFU))
               : word(opcode::ScissorXy, ((x & 0x7FFU) << 11U) | (y & 0x7FFU));
}
constexpr std::uint32_t scissorSize(Generation generation, std::uint32_t width,
                                    std::uint32_t height) {
    return generation == Generation::E1
               ? word(opcode::ScissorSize, ((width & 0x3FFU) << 10U) | (height & 0x3FFU))
               : word(opcode::ScissorSize, ((width & 0xFFFU) << 12U) | (height & 0xFFFU));
}
// Red 8, green 4, blue 2, alpha 1.
constexpr std::uint32_t colorMask(std::uint32_t channels) {
    return word(opcode::ColorMask, channels & 0xFU);
}
constexpr std::uint32_t begin(std::uint32_t primitive) {
    return word(opcode::Begin, primitive & 0xFU);
}
constexpr std::uint32_t end() {
    return word(opcode::End, 0);
}
constexpr std::uint32_t saveContext() {
    return word(opcode::SaveContext, 0);
}
constexpr std::uint32_t restoreContext() {
    return word(opcode::RestoreContext, 0);
}
constexpr std::uint32_t macro(std::uint32_t number) {
    return word(opcode::Macro, number & 1U);
}
constexpr std::uint32_t clear(bool color, bool stencil, bool tags) {
    return word(opcode::Clear, (color ? 4U : 0U) | (stencil ? 2U : 0U) | (tags ? 1U : 0U));
}
constexpr std::uint32_t vertexFormat(std::uint32_t fractionBits) {
    return word(opcode::VertexFormat, fractionBits & 7U);
}
constexpr std::uint32_t vertexTranslateX(std::int32_t x) {
    return word(opcode::VertexTranslateX, static_cast<std::uint32_t>(x) & 0x1FFFFU);
}
constexpr std::uint32_t vertexTranslateY(std::int32_t y) {
    return word(opcode::VertexTranslateY, static_cast<std::uint32_t>(y) & 0x1FFFFU);
}
constexpr std::uint32_t bitmapExtFormat(std::uint32_t format) {
    return word(opcode::BitmapExtFormat, format & 0xFFFFU);
}
constexpr std::uint32_t vertex2f(std::int32_t x, std::int32_t y) {
    return 0x40000000U | ((static_cast<std::uint32_t>(x) & 0x7FFFU) << 15U) |
           (static_cast<std::uint32_t>(y) & 0x7FFFU);
}
constexpr std::uint32_t vertex2ii(std::uint32_t x, std::uint32_t y, std::uint32_t handle,
                                  std::uint32_t cellNumber) {
    return 0x80000000U | ((x & 0x1FFU) << 21U) | ((y & 0x1FFU) << 12U) | ((handle & 0x1FU) << 7U) |
           (cellNumber & 0x7FU);
}

} // namespace controller::dl
