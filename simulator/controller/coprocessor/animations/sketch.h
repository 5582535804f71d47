#pragma once

#include "animation.h"
#include "machine.h"

#include <cstdint>

namespace controller {

// A bitmap that a touch draws into: the pixel under it is set in every frame.
struct SketchPad {
    int x = 0; // on the panel
    int y = 0;
    int width = 0;
    int height = 0;
    std::uint32_t address = 0;
    bool oneBit = false; // L1, not L8
};

class Sketch : public Animation {
public:
    Sketch(Machine& machine, const SketchPad& pad) : m_machine(machine), m_pad(pad) {}
    void frameEnded() override;

private:
    Machine& m_machine;
    SketchPad m_pad;
};

} // namespace controller
