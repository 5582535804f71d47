#pragma once

#include "call.h"
#include "outcome.h"

#include <array>
#include <functional>
#include <utility>

namespace controller {

// The one table of what each command does. Groups of commands enter their functions, which outlive
// the table.
class CommandSet {
public:
    using Handler = std::function<Outcome(const Call&)>;

    template<typename Group>
    void add(Command command, Group& group, Outcome (Group::*function)(const Call&)) {
        at(command) = [&group, function](const Call& call) { return (group.*function)(call); };
    }
    // For commands that are done at once.
    template<typename Group>
    void add(Command command, Group& group, void (Group::*function)(const Call&)) {
        at(command) = [&group, function](const Call& call) -> Outcome {
            (group.*function)(call);
            return Progress::Done;
        };
    }

    // What a command does; empty when it is not modelled.
    const Handler& handlerOf(Command command) const {
        return m_handlers[static_cast<std::size_t>(command)];
    }

private:
    Handler& at(Command command) { return m_handlers[static_cast<std::size_t>(command)]; }

    std::array<Handler, 256> m_handlers;
};

} // namespace controller
