#pragma once

#include <cstdint>

// A board that costs next to nothing, so that only the application's own work is measured: its
// coprocessor has always just finished, no finger touches the panel. It counts what was sent.
namespace idleboard {

struct Traffic {
    std::uint64_t messages = 0;
    std::uint64_t bytes = 0;
};

Traffic traffic();
void reset();

} // namespace idleboard
