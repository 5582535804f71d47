#pragma once

#include "bitmap.h"
#include "fixedmath.h"
#include "graphicsmemory.h"
#include "pixelmath.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

// Sampling a bitmap along a row of its window.
namespace controller {

// Texel coordinates s and t are in 1/2^19 texel: the product of a transform's 1/32768 and a
// window position's 1/16.
constexpr int texelBits = 19;
constexpr std::int64_t oneTexel = std::int64_t{1} << texelBits;
constexpr std::uint32_t longestLine = 4096; // bytes; no word can say more

// --- rows of memory

// The rows of a bitmap's cell. Where memory is not mapped a row of zeros stands in.
class BitmapRows {
public:
    BitmapRows(const GraphicsMemory& memory, const Bitmap& bitmap)
        : m_memory(memory), m_address(bitmap.address), m_stride(bitmap.stride),
          m_all(memory.bytes(bitmap.address, std::size_t{bitmap.stride} *
                                                 static_cast<std::size_t>(bitmap.height))) {}

    const std::uint8_t* operator()(std::int64_t t) {
        const std::size_t offset = static_cast<std::size_t>(t) * m_stride;
        return m_all != nullptr ? m_all + offset : single(offset);
    }
    // The first row, the others behind it in steps of the stride; null when not all are mapped.
    const std::uint8_t* all() const { return m_all; }
    bool missed() const { return m_missed; }

private:
    const std::uint8_t* single(std::size_t offset) {
        static constexpr std::array<std::uint8_t, longestLine> zeros{};
        const std::uint64_t address = m_address + std::uint64_t{offset};
        const std::uint8_t* row =
            address > 0xFFFFFFFF ? nullptr
                                 : m_memory.bytes(static_cast<std::uint32_t>(address), m_stride);
        m_missed = m_missed || row == nullptr;
        return row == nullptr ? zeros.data() : row;
    }

    const GraphicsMemory& m_memory;
    std::uint32_t m_address;
    std::uint32_t m_stride;
    const std::uint8_t* m_all; // null when not all rows are mapped
    bool m_missed = false;
};

// --- values of the two kinds of texels: alphas and pixels

inline std::uint8_t mixed(std::uint8_t a, std::uint8_t b, std::uint32_t fraction) {
    return static_cast<std::uint8_t>((a * (256 - fraction) + b * fraction + 128) >> 8);
}

inline std::uint32_t mixed(std::uint32_t a, std::uint32_t b, std::uint32_t fraction) {
    const std::uint64_t sum =
        spread(a) * (256 - fraction) + spread(b) * fraction + 0x0080008000800080;
    return gathered(sum >> 8 & lanes);
}

inline std::uint8_t madeTransparent(std::uint8_t /*alpha*/) {
    return 0;
}
inline std::uint32_t madeTransparent(std::uint32_t pixel) {
    return withAlpha(pixel, 0);
}

// --- walking a row

// The texel coordinates along one row of the window.
struct RowWalk {
    std::int64_t s;
    std::int64_t t;
    std::int64_t stepS;
    std::int64_t stepT;
    int count;

    bool onTexels() const { return ((s | t | stepS | stepT) & (oneTexel - 1)) == 0; }
};

struct IndexRange {
    int first;
    int end;
};

// The indices i below `count` for which 0 <= start + i * step < limit.
inline IndexRange indicesInside(std::int64_t start, std::int64_t step, std::int64_t limit,
                                int count) {
    const std::int64_t last = start + (count - 1) * step;
    if (std::min(start, last) >= 0 && std::max(start, last) < limit) {
        return {0, count}; // mostly
    }
    std::int64_t first = 0;
    std::int64_t end = 0;
    if (step > 0) {
        first = ceilQuotient(-start, step);
        end = ceilQuotient(limit - start, step);
    } else if (step < 0) {
        first = floorQuotient(start - limit, -step) + 1;
        end = floorQuotient(start, -step) + 1;
    }
    first = std::clamp<std::int64_t>(first, 0, count);
    return {static_cast<int>(first), static_cast<int>(std::clamp<std::int64_t>(end, first, count))};
}

// The indices for which both coordinates are inside `columns` x `lines` texels.
inline IndexRange indicesInside(const RowWalk& walk, int columns, int lines) {
    const IndexRange a = indicesInside(walk.s, walk.stepS, columns * oneTexel, walk.count);
    const IndexRange b = indicesInside(walk.t, walk.stepT, lines * oneTexel, walk.count);
    const int first = std::max(a.first, b.first);
    return {first, std::max(first, std::min(a.end, b.end))};
}

// Samples rows of a bitmap whose texels `Texels` reads.
//
// A row falls into three parts: before the bitmap, inside of it and behind it. Inside, texels are
// read as they come; before and behind, the bitmap is repeated or its border made transparent. Rows
// of samples that stay in one row or in one column of the bitmap are the usual ones and read it
// straight.
template<typename Texels>
class Sampler {
public:
    using Value = typename Texels::Value;

    Sampler(Texels texels, const Bitmap& bitmap, BitmapRows& rows)
        : m_texels(texels), m_bitmap(bitmap), m_rows(rows) {}

    void sample(const RowWalk& walk, Value* values) {
        if (m_bitmap.bilinear && !walk.onTexels()) {
            sampleBilinear(walk, values);
        } else {
            sampleNearest(walk, values);
        }
    }

private:
    // Sets the values of a range to what `take` (s, t) gives.
    template<typename Take>
    static void each(const RowWalk& walk, IndexRange range, Value* values, Take take) {
        std::int64_t s = walk.s + range.first * walk.stepS;
        std::int64_t t = walk.t + range.first * walk.stepT;
        for (int i = range.first; i < range.end; ++i, s += walk.stepS, t += walk.stepT) {
            values[i] = take(s, t);
        }
    }

    void sampleNearest(const RowWalk& walk, Value* values) {
        const IndexRange inside = indicesInside(walk, m_bitmap.width, m_bitmap.height);
        outsideNearest(walk, {0, inside.first}, values);
        if (inside.first < inside.end) {
            insideNearest(walk, inside, values);
        }
        outsideNearest(walk, {inside.end, walk.count}, values);
    }

    void insideNearest(const RowWalk& walk, IndexRange range, Value* values) {
        if (walk.stepT == 0) {
            const std::uint8_t* row = m_rows(walk.t >> texelBits);
            if (walk.stepS == oneTexel) {
                auto x = static_cast<std::uint32_t>(walk.s >> texelBits) +
                         static_cast<std::uint32_t>(range.first);
                for (int i = range.first; i < range.end; ++i) {
                    values[i] = m_texels(row, x++);
                }
                return;
            }
            each(walk, range, values,
                 [&](std::int64_t s, std::int64_t) { return m_texels(row, column(s)); });
        } else if (const std::uint8_t* all = m_rows.all(); walk.stepS == 0 && all != nullptr) {
            const std::uint32_t x = column(walk.s);
            const std::size_t stride = m_bitmap.stride;
            each(walk, range, values, [&](std::int64_t, std::int64_t t) {
                return m_texels(all + static_cast<std::size_t>(t >> texelBits) * stride, x);
            });
        } else {
            each(walk, range, values, [&](std::int64_t s, std::int64_t t) {
                return texel(s >> texelBits, t >> texelBits);
            });
        }
    }

    void outsideNearest(const RowWalk& walk, IndexRange range, Value* values) {
        if (!m_bitmap.repeatX && !m_bitmap.repeatY) {
            std::fill(values + range.first, values + range.end, Value{0});
            return;
        }
        each(walk, range, values, [&](std::int64_t s, std::int64_t t) {
            return wrappedTexel(s >> texelBits, t >> texelBits);
        });
    }

    void sampleBilinear(const RowWalk& walk, Value* values) {
        if (walk.stepT == 0 && fraction(walk.t) == 0) { // on one row of texels
            const auto alongRow = [](auto read) {
                return [read](std::int64_t s, std::int64_t t) {
                    const std::int64_t x = s >> texelBits;
                    const std::int64_t y = t >> texelBits;
                    return mixed(read(x, y), read(x + 1, y), fraction(s));
                };
            };
            const IndexRange inside = indicesInside(walk, m_bitmap.width - 1, m_bitmap.height);
            eachBilinear(walk, inside, values, alongRow);
            return;
        }
        const auto betweenFour = [](auto read) {
            return [read](std::int64_t s, std::int64_t t) {
                const std::int64_t x = s >> texelBits;
                const std::int64_t y = t >> texelBits;
                const std::uint32_t fractionX = fraction(s);
                return mixed(mixed(read(x, y), read(x + 1, y), fractionX),
                             mixed(read(x, y + 1), read(x + 1, y + 1), fractionX), fraction(t));
            };
        };
        const IndexRange inside = indicesInside(walk, m_bitmap.width - 1, m_bitmap.height - 1);
        eachBilinear(walk, inside, values, betweenFour);
    }

    // `inside`: where the neighbours to the right and below exist too. `mix` makes of a way to read
    // texels one to take samples.
    template<typename Mix>
    void eachBilinear(const RowWalk& walk, IndexRange inside, Value* values, Mix mix) {
        const auto plain = mix([this](std::int64_t x, std::int64_t y) { return texel(x, y); });
        const auto wrapping =
            mix([this](std::int64_t x, std::int64_t y) { return wrappedTexel(x, y); });
        each(walk, {0, inside.first}, values, wrapping);
        each(walk, inside, values, plain);
        each(walk, {inside.end, walk.count}, values, wrapping);
    }

    // In 1/256 texel.
    static std::uint32_t fraction(std::int64_t coordinate) {
        return static_cast<std::uint32_t>(coordinate >> (texelBits - 8) & 255);
    }

    static std::uint32_t column(std::int64_t s) {
        return static_cast<std::uint32_t>(s >> texelBits);
    }

    Value texel(std::int64_t x, std::int64_t y) {
        return m_texels(m_rows(y), static_cast<std::uint32_t>(x));
    }

    // Outside the bitmap: the texel of the repeated picture, or the nearest one made transparent.
    Value wrappedTexel(std::int64_t x, std::int64_t y) {
        const std::int64_t nearX = wrapped(x, m_bitmap.width, m_bitmap.repeatX);
        const std::int64_t nearY = wrapped(y, m_bitmap.height, m_bitmap.repeatY);
        const bool outside = (!m_bitmap.repeatX && nearX != x) || (!m_bitmap.repeatY && nearY != y);
        const Value value = texel(nearX, nearY);
        return outside ? madeTransparent(value) : value;
    }

    static std::int64_t wrapped(std::int64_t coordinate, std::int64_t size, bool repeat) {
        return repeat ? coordinate - floorQuotient(coordinate, size) * size
                      : std::clamp<std::int64_t>(coordinate, 0, size - 1);
    }

    Texels m_texels;
    const Bitmap& m_bitmap;
    BitmapRows& m_rows;
};

} // namespace controller
