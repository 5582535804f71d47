#pragma once

#include "machine.h"
#include "outcome.h"

#include <cstdint>

namespace controller {

// The ring in general memory that a host puts media data into: it writes behind MEDIAFIFO_WRITE,
// the coprocessor reads at MEDIAFIFO_READ, both offsets in the ring. E2 and E3.
class MediaFifo {
public:
    explicit MediaFifo(Machine& machine) : m_machine(machine) {}

    // A fault when the ring is not inside general memory.
    void set(std::uint32_t base, std::uint32_t size);
    void reset() { m_size = 0; }

    // Feeds `sink` with what is in the ring and what still comes, until it has enough; behind that
    // the rest of the word is skipped. A fault when there is no ring.
    Task reader(DataSink sink);

private:
    std::uint32_t offset(std::uint32_t word) const;
    Progress read(const DataSink& sink);

    Machine& m_machine;
    std::uint32_t m_base = 0;
    std::uint32_t m_size = 0; // 0: there is none
};

} // namespace controller
