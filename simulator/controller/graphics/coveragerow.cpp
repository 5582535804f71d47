#include "coveragerow.h"

#include <algorithm>
#include <cstddef>

namespace controller {

namespace {

constexpr std::int32_t fullCoverage = linesPerRow * rowUnits;

} // namespace

std::uint8_t asFraction255(std::int32_t coverage) {
    return static_cast<std::uint8_t>((coverage * 255 + fullCoverage / 2) / fullCoverage);
}

void CoverageRow::Pixels::include(int from, int to) {
    first = std::min(first, from);
    end = std::max(end, to);
}

void CoverageRow::reach(int left, int right) {
    m_left = left;
    m_right = right;
    const auto width = static_cast<std::size_t>(right - left);
    if (m_coverage.size() < width) {
        m_coverage.resize(width);
        m_changes.resize(width + 2); // an edge at the right border changes two more
    }
}

void CoverageRow::add(const RowSpan& span, int count) {
    const std::int64_t leftmost = static_cast<std::int64_t>(m_left) * rowUnits;
    const std::int64_t rightmost = static_cast<std::int64_t>(m_right) * rowUnits;
    const auto left =
        static_cast<std::uint32_t>(std::clamp(span.left, leftmost, rightmost) - leftmost);
    const auto right =
        static_cast<std::uint32_t>(std::clamp(span.right, leftmost, rightmost) - leftmost);
    if (left >= right) {
        return;
    }
    addEdge(left, count);
    addEdge(right, -count);
    const Pixels beginning{static_cast<int>(left / rowUnits),
                           static_cast<int>((left + rowUnits - 1) / rowUnits)};
    const Pixels end{static_cast<int>(right / rowUnits),
                     static_cast<int>((right + rowUnits - 1) / rowUnits)};
    if (m_lines == 0) {
        m_beginnings = beginning;
        m_ends = end;
    } else {
        m_beginnings.include(beginning.first, beginning.end);
        m_ends.include(end.first, end.end);
    }
    m_lines += count;
}

// From `position` on, `weight` lines more are covered.
void CoverageRow::addEdge(std::uint32_t position, int weight) {
    const std::size_t pixel = position / rowUnits;
    const auto outside = static_cast<int>(position % rowUnits);
    m_changes[pixel] += weight * (rowUnits - outside);
    m_changes[pixel + 1] += weight * outside;
}

void CoverageRow::draw(int y) {
    if (m_lines == 0) {
        return;
    }
    if (m_beginnings.end < m_ends.first) {
        drawEach(y, m_beginnings, 0);
        m_pipeline.fill(y, m_left + m_beginnings.end, m_left + m_ends.first,
                        asFraction255(m_lines * rowUnits));
        drawEach(y, m_ends, m_lines * rowUnits);
    } else {
        drawEach(y, {m_beginnings.first, m_ends.end}, 0);
    }
    m_lines = 0;
}

// Pixels of different coverage; uses up their changes and the one behind them.
void CoverageRow::drawEach(int y, const Pixels& pixels, std::int32_t coverageBefore) {
    std::int32_t coverage = coverageBefore;
    const auto first = static_cast<std::size_t>(pixels.first);
    const auto end = static_cast<std::size_t>(pixels.end);
    for (std::size_t i = first; i < end; ++i) {
        coverage += m_changes[i];
        m_changes[i] = 0;
        m_coverage[i] = asFraction255(coverage);
    }
    m_changes[end] = 0;
    if (first < end) {
        m_pipeline.cover(y, m_left + pixels.first, end - first, &m_coverage[first]);
    }
}

} // namespace controller
