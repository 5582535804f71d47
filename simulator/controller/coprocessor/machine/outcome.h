#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <variant>

namespace controller {

// How far a command has come.
enum class Progress : std::uint8_t {
    Done,
    Waiting,   // for something outside the coprocessor: a frame, a swap, a touch
    Working,   // not done with its own work; goes on as soon as there is time
    Restarted, // done, and the ring's pointers are where the command has put them
};

// A command that may have to wait: called until it is done.
using Task = std::function<Progress()>;

// Takes the data that follow a command in the ring, in pieces; true when that was the last of
// them.
using DataSink = std::function<bool(const std::uint8_t* bytes, std::size_t count)>;

// What executing a command leads to.
using Outcome = std::variant<Progress, Task, DataSink>;

} // namespace controller
