#pragma once

#include "pixelpipeline.h"
#include "position.h"

#include <cstdint>
#include <vector>

namespace controller {

// Positions within a row are in 1/256 pixel.
constexpr int rowUnits = 256;
// How many lines of samples a row of pixels is made of. Positions in y are in 1/16 pixel, so that
// each line of samples stands for one step of them.
constexpr int linesPerRow = subpixels;

// The part of a line of samples that a shape covers, in 1/256 pixel; empty when left >= right.
struct RowSpan {
    std::int64_t left = 0;
    std::int64_t right = 0;
};

// As so many 255ths, of a pixel whose lines of samples are covered by so many 1/256 pixel in all.
std::uint8_t asFraction255(std::int32_t coverage);

// How much of each pixel of one row a shape covers: the sum over its lines of samples, each of
// which covers one span, exactly in x.
class CoverageRow {
public:
    // For rows between the pixels `left` and `right`.
    CoverageRow(int left, int right);

    // Adds `count` lines of samples that are covered alike.
    void add(const RowSpan& span, int count);
    // Draws what has been added in row y and empties the row.
    void draw(PixelPipeline& pipeline, int y);

private:
    void addEdge(std::uint32_t position, int weight);
    void drawPartial(PixelPipeline& pipeline, int y, int from, int to);

    int m_left;
    int m_right;
    int m_lines = 0;
    // Pixels that the row touches, and those of them that every line covers wholly.
    int m_first = 0;
    int m_end = 0;
    int m_innerFirst = 0;
    int m_innerEnd = 0;
    // Change of the coverage from pixel to pixel.
    std::vector<std::int32_t> m_changes;
    std::vector<std::uint8_t> m_coverage;
};

} // namespace controller
