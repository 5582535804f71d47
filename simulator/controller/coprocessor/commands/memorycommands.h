#pragma once

#include "commandset.h"
#include "machine.h"

namespace controller {

// Bytes moved, filled, summed and read.
class MemoryCommands {
public:
    explicit MemoryCommands(Machine& machine) : m_machine(machine) {}
    void addTo(CommandSet& set);

private:
    Outcome memWrite(const Call& call);
    void memSet(const Call& call);
    void memZero(const Call& call);
    void memCpy(const Call& call);
    void memCrc(const Call& call);
    void regRead(const Call& call);

    Machine& m_machine;
};

} // namespace controller
