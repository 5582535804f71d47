#pragma once

#include <cstdint>

namespace controller {

// What drawing a frame costs, counted and not timed: a list that is given up is given up at the
// same word, and leaves the same picture, on every machine. One unit is about a nanosecond of a
// core of 2 GHz.
class Work {
public:
    // What a frame may cost. The chip has some 13 ms and draws a pixel and more a clock; a viewer
    // must not hang on it for more than a tenth of a second.
    static constexpr std::int64_t limit = 50'000'000;

    explicit Work(std::int64_t most = limit) : m_most(most) {}

    void add(std::int64_t cost) { m_done += cost; }
    std::int64_t done() const { return m_done; }
    bool isTooMuch() const { return m_done > m_most; }

private:
    std::int64_t m_most;
    std::int64_t m_done = 0;
};

namespace cost {

constexpr std::int64_t panelPixel = 8;    // of a frame, before anything is drawn: memory to be had
constexpr std::int64_t word = 10;         // to walk over, whatever it says
constexpr std::int64_t vertex = 100;      // with the primitive that it makes, before its first line
constexpr std::int64_t palette = 4000;    // to read
constexpr std::int64_t sampleLine = 60;   // of a shape with smooth edges
constexpr std::int64_t edgePixel = 60;    // of the columns that an edge strip reaches in part
constexpr std::int64_t row = 100;         // of pixels, before the first of them
constexpr std::int64_t clearedPixel = 1;  // each of colour, stencil and tag
constexpr std::int64_t plainPixel = 1;    // blended as usual, many at a time
constexpr std::int64_t fragment = 20;     // a pixel that is tested and blended by itself
constexpr std::int64_t texel = 4;         // a sample of a bitmap
constexpr std::int64_t wrappedTexel = 40; // outside of it, or between four texels
constexpr std::int64_t recoloured = 6;    // a sample whose channels are exchanged or multiplied

} // namespace cost

} // namespace controller
