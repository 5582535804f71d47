#pragma once

#include <string>

namespace controller {

// Thrown by a command that the chip cannot go on after; the coprocessor then stops, and says why.
struct Fault {
    std::string text;
};

[[noreturn]] inline void fault(const std::string& text) {
    throw Fault{text};
}

} // namespace controller
