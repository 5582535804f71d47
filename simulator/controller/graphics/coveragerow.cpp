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

CoverageRow::CoverageRow(int left, int right)
    : m_left(left), m_right(right), m_changes(static_cast<std::size_t>(right - left) + 2),
      m_coverage(static_cast<std::size_t>(right - left)) {}

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
    const auto first = static_cast<int>(left / rowUnits);
    const auto end = static_cast<int>((right + rowUnits - 1) / rowUnits);
    const auto innerFirst = static_cast<int>((left + rowUnits - 1) / rowUnits);
    const auto innerEnd = static_cast<int>(right / rowUnits);
    if (m_lines == 0) {
        m_first = first;
        m_end = end;
        m_innerFirst = innerFirst;
        m_innerEnd = innerEnd;
    } else {
        m_first = std::min(m_first, first);
        m_end = std::max(m_end, end);
        m_innerFirst = std::max(m_innerFirst, innerFirst);
        m_innerEnd = std::min(m_innerEnd, innerEnd);
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

void CoverageRow::draw(PixelPipeline& pipeline, int y) {
    if (m_lines == 0) {
        return;
    }
    if (m_lines < linesPerRow || m_innerFirst >= m_innerEnd) {
        m_innerFirst = m_innerEnd = m_end;
    }
    drawPartial(pipeline, y, m_first, m_innerFirst);
    pipeline.fill(y, m_left + m_innerFirst, m_left + m_innerEnd);
    // The changes inside the inner part are all in its first pixel and add up to full coverage.
    if (m_innerFirst < m_innerEnd) {
        m_changes[static_cast<std::size_t>(m_innerFirst)] = 0;
        m_changes[static_cast<std::size_t>(m_innerEnd)] += fullCoverage;
    }
    drawPartial(pipeline, y, m_innerEnd, m_end);
    m_changes[static_cast<std::size_t>(m_end)] = 0;
    m_lines = 0;
}

void CoverageRow::drawPartial(PixelPipeline& pipeline, int y, int from, int to) {
    if (from >= to) {
        return;
    }
    std::int32_t coverage = 0;
    for (auto i = static_cast<std::size_t>(from); i < static_cast<std::size_t>(to); ++i) {
        coverage += m_changes[i];
        m_changes[i] = 0;
        m_coverage[i] = asFraction255(coverage);
    }
    pipeline.cover(y, m_left + from, static_cast<std::size_t>(to - from), m_coverage.data() + from);
}

} // namespace controller
