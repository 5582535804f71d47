#pragma once

#include "command.h"
#include "fault.h"

namespace panel::script {

// What breaks the server, the board and the controller, and mends them.
const CommandTable& faultCommands();

struct ServerFault : Action {
    explicit ServerFault(server::Fault kind) : fault(kind) {}
    Progress play(Stage& stage) const override;

    const server::Fault fault;
};

struct BoardTransfers : Action { // whether SPI messages get through
    explicit BoardTransfers(bool work) : working(work) {}
    Progress play(Stage& stage) const override;

    const bool working;
};

struct ControllerIdentity : Action {
    explicit ControllerIdentity(std::uint32_t chipId) : word(chipId) {}
    Progress play(Stage& stage) const override;

    const std::uint32_t word;
};

struct ControllerAnswering : Action {
    explicit ControllerAnswering(bool answers) : answering(answers) {}
    Progress play(Stage& stage) const override;

    const bool answering;
};

struct CoprocessorStalled : Action {
    explicit CoprocessorStalled(bool hangs) : stalled(hangs) {}
    Progress play(Stage& stage) const override;

    const bool stalled;
};

} // namespace panel::script
