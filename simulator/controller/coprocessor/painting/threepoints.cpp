#include "threepoints.h"

#include "fixedmath.h"

#include <limits>

namespace controller {

namespace {

constexpr std::int32_t coordinateLimit = 0xFFFF;

bool fits(std::int64_t value) {
    return value == saturated(value);
}

bool isInRange(const PointPair& point) {
    for (const std::int32_t value : {point.x, point.y, point.tx, point.ty}) {
        if (value < -coordinateLimit || value > coordinateLimit) {
            return false;
        }
    }
    return true;
}

struct Row {
    std::int64_t x = 0; // factor of x, of y, and the constant
    std::int64_t y = 0;
    std::int64_t constant = 0;

    bool fits() const {
        return controller::fits(x) && controller::fits(y) && controller::fits(constant);
    }
};

} // namespace

std::optional<Affine> affineThrough(const std::array<PointPair, 3>& points, std::int32_t unit) {
    for (const PointPair& point : points) {
        if (!isInRange(point)) {
            return std::nullopt;
        }
    }
    const PointPair& p = points[0];
    const std::int64_t x1 = points[1].x - p.x;
    const std::int64_t y1 = points[1].y - p.y;
    const std::int64_t x2 = points[2].x - p.x;
    const std::int64_t y2 = points[2].y - p.y;
    const std::int64_t determinant = x1 * y2 - x2 * y1;
    if (determinant == 0) {
        return std::nullopt;
    }
    const auto row = [&](std::int64_t t0, std::int64_t t1, std::int64_t t2) {
        Row result;
        result.x = roundedQuotient(((t1 - t0) * y2 - (t2 - t0) * y1) * unit, determinant);
        result.y = roundedQuotient(((t2 - t0) * x1 - (t1 - t0) * x2) * unit, determinant);
        result.constant = t0 * unit - saturated(result.x) * std::int64_t{p.x} -
                          saturated(result.y) * std::int64_t{p.y};
        return result;
    };
    const Row u = row(p.tx, points[1].tx, points[2].tx);
    const Row v = row(p.ty, points[1].ty, points[2].ty);
    if (!u.fits() || !v.fits()) {
        return std::nullopt;
    }
    return Affine{saturated(u.x), saturated(u.y), saturated(u.constant),
                  saturated(v.x), saturated(v.y), saturated(v.constant)};
}

} // namespace controller
