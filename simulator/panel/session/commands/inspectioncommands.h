#pragma once

#include "command.h"
#include "registers.h"

namespace panel::script {

// What looks into the controller.
const CommandTable& inspectionCommands();

struct ExpectRegister : Action { // taken as a signed number
    ExpectRegister(controller::Register name, std::int32_t held) : id(name), value(held) {}
    Progress play(Stage& stage) const override;

    const controller::Register id;
    const std::int32_t value;
};

} // namespace panel::script
