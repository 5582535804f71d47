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
//
// Every span begins in one of the pixels that are noted as beginnings and ends in one of those
// noted as ends; where there are pixels between the two, each of them is covered by all the lines
// alike. Only around beginnings and ends does each pixel have a coverage of its own: the sum of
// the changes up to it.
class CoverageRow {
public:
    explicit CoverageRow(PixelPipeline& pipeline) : m_pipeline(pipeline) {}

    PixelPipeline& pipeline() { return m_pipeline; }

    // From now on for rows between the pixels `left` and `right`.
    void reach(int left, int right);
    // Adds `count` lines of samples that are covered alike.
    void add(const RowSpan& span, int count);
    // Draws what has been added in row y and empties the row.
    void draw(int y);

private:
    // Pixels [first, end), counted from m_left.
    struct Pixels {
        int first = 0;
        int end = 0;

        void include(int from, int to);
    };

    void addEdge(std::uint32_t position, int weight);
    void drawEach(int y, const Pixels& pixels, std::int32_t coverageBefore);

    PixelPipeline& m_pipeline;
    int m_left = 0;
    int m_right = 0;
    int m_lines = 0;
    Pixels m_beginnings;
    Pixels m_ends;
    std::vector<std::int32_t> m_changes; // of the coverage from pixel to pixel; 0 between rows
    std::vector<std::uint8_t> m_coverage;
};

} // namespace controller
