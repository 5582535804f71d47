#pragma once

#include "animation.h"
#include "machine.h"

namespace controller {

// Moves the vertex in MACRO_0 about the panel, for a list that draws a bitmap with it.
class ScreenSaver : public Animation {
public:
    explicit ScreenSaver(Machine& machine) : m_machine(machine) {}
    void frameEnded() override;

private:
    Machine& m_machine;
    std::uint32_t m_frame = 0;
};

} // namespace controller
