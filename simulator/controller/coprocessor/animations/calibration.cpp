#include "calibration.h"

#include "fixedmath.h"
#include "touchengine.h"

namespace controller {

Calibration::Calibration(const Machine& machine) : m_machine(machine) {
    const int w = machine.pictureWidth();
    const int h = machine.pictureHeight();
    m_points[0] = {0, 0, w / 10, h / 10};
    m_points[1] = {0, 0, w * 9 / 10, h / 2};
    m_points[2] = {0, 0, w / 2, h * 9 / 10};
}

void Calibration::frameEnded() {
    if (isOver()) {
        return;
    }
    const std::uint32_t raw = m_machine.registers[Register::TouchRawXy];
    if (raw == untouchedRawXy) {
        m_released = true;
    } else if (m_released) {
        PointPair& point = m_points[m_touched++];
        point.x = static_cast<std::int32_t>(raw >> 16U);
        point.y = static_cast<std::int32_t>(raw & 0xFFFFU);
        m_released = false;
    }
}

void Calibration::draw(Words& words, std::uint32_t) const {
    if (!isOver()) {
        const PointPair& dot = m_points[m_touched];
        Painter(words, m_machine.generation)
            .disc({{dot.tx * subpixels, dot.ty * subpixels},
                   m_machine.pictureHeight() * subpixels / 32});
    }
}

std::optional<Affine> Calibration::transform() const {
    std::optional<Affine> transform = affineThrough(m_points, 65536);
    if (transform) {
        // The dots' pixels are touched in their middle.
        transform->c = saturated(std::int64_t{transform->c} + 32768);
        transform->f = saturated(std::int64_t{transform->f} + 32768);
    }
    return transform;
}

} // namespace controller
