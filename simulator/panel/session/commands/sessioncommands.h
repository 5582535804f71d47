#pragma once

#include "command.h"

namespace panel::script {

// The session itself.
const CommandTable& sessionCommands();

struct Report : Action {
    Progress play(Stage& stage) const override;
};

struct End : Action {
    Progress play(Stage& stage) const override;
};

} // namespace panel::script
