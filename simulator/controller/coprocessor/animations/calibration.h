#pragma once

#include "overlay.h"
#include "threepoints.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace controller {

// Shows three dots in turn, the next one when a touch has been noted for the last.
class Calibration : public Drawing {
public:
    explicit Calibration(const Machine& machine);

    void frameEnded() override;
    void draw(Words& words, std::uint32_t frame) const override;

    bool isOver() const { return m_touched == m_points.size(); }
    // From raw to screen coordinates, for the transform registers; nothing when the touches allow
    // none. Only when it is over.
    std::optional<Affine> transform() const;

private:
    const Machine& m_machine;
    std::array<PointPair, 3> m_points; // from touch to dot
    std::size_t m_touched = 0;
    bool m_released = true; // the finger has been off the panel since the last touch
};

} // namespace controller
