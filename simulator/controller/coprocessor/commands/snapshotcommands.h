#pragma once

#include "commandset.h"
#include "machine.h"

#include <cstdint>

namespace controller {

// What is on the panel, stored in memory.
class SnapshotCommands {
public:
    explicit SnapshotCommands(Machine& machine) : m_machine(machine) {}
    void addTo(CommandSet& set);

private:
    // A part of the picture; what of it lies outside of that is not stored.
    struct Part {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };

    void snapshot(const Call& call);
    void snapshot2(const Call& call);
    void store(const Call& call, std::uint32_t format, std::uint32_t destination, const Part& part);

    Machine& m_machine;
};

} // namespace controller
