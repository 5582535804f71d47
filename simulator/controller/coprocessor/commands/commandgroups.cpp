#include "commandgroups.h"

#include <string>

namespace controller {

Commands::Commands(Machine& machine)
    : m_machine(machine), m_tracker(machine), m_list(machine, m_animations), m_widgets(machine),
      m_matrix(machine), m_memory(machine), m_streams(machine), m_snapshots(machine),
      m_animated(machine, m_animations, m_tracker, m_widgets.colors()), m_flash(machine) {
    m_set.add(Command::ColdStart, *this, &Commands::coldStart);
    m_list.addTo(m_set);
    m_widgets.addTo(m_set);
    m_matrix.addTo(m_set);
    m_memory.addTo(m_set);
    m_streams.addTo(m_set);
    m_snapshots.addTo(m_set);
    m_animated.addTo(m_set);
    m_flash.addTo(m_set);
}

Outcome Commands::execute(const Call& call) {
    const CommandSet::Handler& handler = m_set.handlerOf(call.info->command);
    if (!handler) {
        m_machine.port.complain(std::string("coprocessor command ") + call.name() +
                                " is not modelled");
        return Progress::Done;
    }
    return handler(call);
}

void Commands::coldStart(const Call&) {
    m_widgets.reset();
    m_matrix.reset();
    m_streams.reset();
    m_tracker.reset();
}

void Commands::reset() {
    m_animations.stop();
    m_machine.flash.deselect();
    coldStart({});
}

void Commands::frameEnded() {
    m_tracker.frameEnded();
    m_animations.frameEnded();
}

} // namespace controller
