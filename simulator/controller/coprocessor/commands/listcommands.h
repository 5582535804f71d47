#pragma once

#include "animations.h"
#include "commandset.h"
#include "machine.h"

#include <cstdint>
#include <functional>

namespace controller {

// Begin, end and what is put into the display list as it is.
class ListCommands {
public:
    ListCommands(Machine& machine, Animations& animations)
        : m_machine(machine), m_animations(animations) {}
    void addTo(CommandSet& set);

private:
    Outcome dlStart(const Call& call);
    void swap(const Call& call);
    Outcome sync(const Call& call);
    void interrupt(const Call& call);
    void append(const Call& call);
    void appendF(const Call& call);
    void setBitmap(const Call& call);
    void nothing(const Call&) {}
    void appendBytes(const std::function<std::uint8_t(std::uint32_t)>& read, std::uint32_t count);

    Machine& m_machine;
    Animations& m_animations;
};

} // namespace controller
