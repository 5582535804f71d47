#pragma once

#include "commandset.h"
#include "machine.h"

#include <cstdint>

namespace controller {

// Data that are unpacked into memory, and what is known about them afterwards.
class StreamCommands {
public:
    explicit StreamCommands(Machine& machine) : m_machine(machine) {}
    void addTo(CommandSet& set);
    void reset() { m_pointer = 0; }

private:
    Outcome inflate(const Call& call);
    Outcome inflate2(const Call& call);
    Outcome image(const Call& call);
    void getPtr(const Call& call);
    void getProps(const Call& call);
    void flashSource(const Call& call);
    DataSink inflateSink(std::uint32_t destination);

    Machine& m_machine;
    std::uint32_t m_pointer = 0; // behind the last data unpacked
    std::uint32_t m_flashSource = 0;
};

} // namespace controller
