#pragma once

namespace controller {

// Pixels [left, right) x [top, bottom).
struct PixelRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    constexpr bool empty() const { return left >= right || top >= bottom; }
};

} // namespace controller
