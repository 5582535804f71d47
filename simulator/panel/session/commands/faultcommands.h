#pragma once

#include "command.h"
#include "fault.h"
#include "faultorder.h"

namespace panel::script {

// What breaks the server, the board and the controller, and mends them.
const CommandTable& faultCommands();

struct ServerFault : Action {
    explicit ServerFault(server::FaultRule asked) : rule(std::move(asked)) {}
    Progress play(Stage& stage) const override;

    const server::FaultRule rule;
};

struct FaultOn : Action { // any of the table
    explicit FaultOn(FaultOrder asked) : order(std::move(asked)) {}
    Progress play(Stage& stage) const override;

    const FaultOrder order;
};

struct FaultOff : Action { // without a name, of all that are on
    explicit FaultOff(QString which) : name(std::move(which)) {}
    Progress play(Stage& stage) const override;

    const QString name;
};

struct WaitFault : Action { // until it has struck
    explicit WaitFault(QString which) : name(std::move(which)) {}
    Progress play(Stage& stage) const override;
    bool takesLimit() const override { return true; }

    const QString name;
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
