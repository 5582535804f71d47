#pragma once

#include "command.h"

namespace panel::script {

// Starts and ends the application.
const CommandTable& applicationCommands();

struct ApplicationSwitch : Action {
    explicit ApplicationSwitch(bool runs) : on(runs) {}
    Progress play(Stage& stage) const override;

    const bool on;
};

} // namespace panel::script
