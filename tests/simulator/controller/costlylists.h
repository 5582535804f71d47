#pragma once

#include "scanner.h"

#include <cstdint>
#include <string>
#include <vector>

namespace controller {

// Display lists, for an E3, that draw as much as they can of what is costly to draw, round and
// round.
struct CostlyList {
    std::string name;
    std::vector<std::uint32_t> words;
};

namespace costly {

inline std::vector<std::uint32_t> looped(std::vector<std::uint32_t> once,
                                         const std::vector<std::uint32_t>& again) {
    const auto start = static_cast<std::uint32_t>(once.size());
    once.insert(once.end(), again.begin(), again.end());
    once.push_back(dl::word(opcode::Jump, start));
    return once;
}

// A bitmap that fills any panel, turned, of 256 x 256 texels.
inline std::vector<std::uint32_t> turnedBitmap(std::uint32_t format, std::uint32_t sizeFlags) {
    using namespace listwords;
    return {bitmapHandle(1),
            dl::bitmapSource(0),
            dl::bitmapLayout(format, 256, 256),
            dl::word(opcode::BitmapSize, sizeFlags),
            dl::bitmapSizeH(0, 0),
            dl::word(opcode::PaletteSource, 4096),
            dl::bitmapTransform(0, 100),
            dl::bitmapTransform(1, 60),
            dl::bitmapTransform(3, -60),
            dl::bitmapTransform(4, 100),
            dl::bitmapTransform(5, 60 * 128)};
}

} // namespace costly

inline std::vector<CostlyList> costlyLists() {
    using namespace listwords;
    using namespace costly;
    const std::uint32_t narrow = scissorSize(1, 2048);
    const std::uint32_t alphaTest = word(opcode::AlphaFunc, test::Greater << 8 | 3);
    const std::uint32_t stencilCounts = word(opcode::StencilOp, stencilop::IncrementWrapping);
    const std::vector<std::uint32_t> eachFragment = {alphaTest, stencilCounts,
                                                     word(opcode::ColorMask, 0xE), dl::colorA(77)};
    const std::vector<std::uint32_t> thick = {pointSize(8191), lineWidth(4095)};
    const std::uint32_t upperLeft = vertex2f(3, 5);
    const std::uint32_t lowerRight = vertex2f(16383, 16381);
    const std::vector<std::uint32_t> bitmap = {begin(primitive::Bitmaps),
                                               dl::vertex2ii(0, 0, 1, 0)};

    std::vector<CostlyList> lists = {
        {"cleared", looped({}, {clearAll})},
        {"cleared in part",
         looped({word(opcode::ColorMask, 5), word(opcode::StencilMask, 3)}, {clearAll})},
        {"narrow points", looped({clearAll, pointSize(8191), narrow, begin(primitive::Points)},
                                 {vertex2f(0, 4000)})},
        {"narrow strip of lines",
         looped({clearAll, lineWidth(4095), narrow, begin(primitive::LineStrip)},
                {upperLeft, lowerRight})},
        {"narrow rectangles", looped({clearAll, lineWidth(4095), narrow, begin(primitive::Rects)},
                                     {upperLeft, vertex2f(-900, 4000)})},
        {"points", looped(thick + eachFragment, {begin(primitive::Points), vertex2f(3000, 2000)})},
        {"strip of lines", looped(thick, {begin(primitive::LineStrip), upperLeft, lowerRight})},
        {"thin lines",
         looped({lineWidth(16)}, {begin(primitive::LineStrip), upperLeft, lowerRight})},
        {"translucent rectangles",
         looped(thick + eachFragment, {begin(primitive::Rects), upperLeft, lowerRight})},
        {"one pixel of each shape",
         looped(thick + std::vector{scissorSize(1, 1)},
                {begin(primitive::Points), upperLeft, begin(primitive::LineStrip), upperLeft,
                 lowerRight, begin(primitive::Rects), upperLeft, lowerRight})},
        {"outside of the panel",
         looped(thick + std::vector{scissorXy(2047, 2047)},
                {begin(primitive::Points), upperLeft, begin(primitive::LineStrip), upperLeft,
                 lowerRight, begin(primitive::Rects), upperLeft, lowerRight})},
        {"turned PALETTED8 with alpha test",
         looped(turnedBitmap(format::Paletted8, repeatX | repeatY) + std::vector{alphaTest},
                bitmap)},
        {"turned and smoothed PALETTED8 with all tests",
         looped(turnedBitmap(format::Paletted8, bilinear | repeatX | repeatY) + eachFragment,
                bitmap)},
        {"turned ARGB4 with exchanged channels",
         looped(turnedBitmap(format::Argb4, repeatX | repeatY) +
                    std::vector{word(opcode::BitmapSwizzle, 02345), dl::colorRgb(0x123456)},
                bitmap)},
        {"turned L4", looped(turnedBitmap(format::L4, nearest), bitmap)},
        {"a palette for each of many bitmaps",
         looped(turnedBitmap(format::Paletted4444, nearest) +
                    std::vector{scissorSize(1, 1), begin(primitive::Bitmaps)},
                {word(opcode::PaletteSource, 8), dl::vertex2ii(0, 0, 1, 0),
                 word(opcode::PaletteSource, 16), dl::vertex2ii(0, 0, 1, 0)})},
        {"bitmaps that memory does not hold",
         looped({bitmapHandle(1), dl::bitmapSource(0x3FFFFF), dl::bitmapLayout(format::L8, 9, 0),
                 dl::bitmapLayoutH(4095, 2047), dl::word(opcode::BitmapSize, bilinear | repeatY),
                 dl::bitmapSizeH(0, 0), begin(primitive::Bitmaps)},
                {dl::vertex2ii(0, 0, 1, 127)})},
        {"text", looped({scissorSize(2048, 2048), begin(primitive::Bitmaps)},
                        {dl::vertex2ii(9, 9, 31, 'W'), dl::vertex2ii(40, 9, 20, 'W')})},
        {"contexts", looped({}, {dl::saveContext(), dl::restoreContext()})},
    };
    for (const std::uint32_t strip : {primitive::EdgeStripR, primitive::EdgeStripL,
                                      primitive::EdgeStripA, primitive::EdgeStripB}) {
        lists.push_back(
            {"edge strips " + std::to_string(strip),
             looped(eachFragment, {begin(strip), upperLeft, vertex2f(9000, 4003), lowerRight})});
        lists.push_back({"short edge strips " + std::to_string(strip),
                         looped({begin(strip)}, {vertex2f(35, 37), vertex2f(46, 48)})});
    }
    return lists;
}

} // namespace controller
