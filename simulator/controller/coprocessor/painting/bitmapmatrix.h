#pragma once

#include "threepoints.h"

#include <cstdint>

namespace controller {

// The coprocessor's bitmap matrix: the map from bitmap to screen that TRANSLATE, SCALE and ROTATE
// build up, each acting before what is there already, so that the last one sent is the first one a
// bitmap goes through. Values have 16 fraction bits.
class BitmapMatrix {
public:
    void loadIdentity() { m_values = identity; }
    void translate(std::int32_t x, std::int32_t y);
    void scale(std::int32_t x, std::int32_t y);
    void rotate(std::uint32_t angle); // 65536 to the turn, clockwise
    // Turn and scale that leave the point (x, y), in pixels, where it is.
    void rotateAround(std::int32_t x, std::int32_t y, std::uint32_t angle, std::int32_t factor);

    const Affine& values() const { return m_values; }
    // From screen to bitmap, as BITMAP_TRANSFORM_A .. _F want it: 8 fraction bits, cut to the
    // words' fields. The identity when the matrix has no inverse.
    Affine inverse() const;

private:
    void apply(const Affine& first);

    static constexpr Affine identity{65536, 0, 0, 0, 65536, 0};
    Affine m_values = identity;
};

} // namespace controller
