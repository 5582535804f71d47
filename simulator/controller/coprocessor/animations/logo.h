#pragma once

#include "overlay.h"

namespace controller {

// The built-in logo: a disc that grows on white.
class Logo : public Drawing {
public:
    Logo(const Machine& machine, std::uint32_t color) : m_machine(machine), m_color(color) {}

    void frameEnded() override { ++m_scanned; }
    void draw(Words& words, std::uint32_t frame) const override;
    // Whether all of its frames have been scanned.
    bool isOver() const { return m_scanned >= frames; }

private:
    static constexpr std::uint32_t frames = 120;

    const Machine& m_machine;
    std::uint32_t m_color;
    std::uint32_t m_scanned = 0;
};

} // namespace controller
