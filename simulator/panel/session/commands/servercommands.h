#pragma once

#include "command.h"

#include <QByteArray>

#include <array>
#include <optional>

namespace panel::script {

// What the measurement server does and gives.
const CommandTable& serverCommands();

struct ServerSwitch : Action {
    explicit ServerSwitch(bool listens) : on(listens) {}
    Progress play(Stage& stage) const override;

    const bool on;
};

struct ServerValues : Action { // what DATA? gives; none: random again
    explicit ServerValues(std::optional<std::array<double, 4>> sample) : values(sample) {}
    Progress play(Stage& stage) const override;

    const std::optional<std::array<double, 4>> values;
};

struct ServerReply : Action { // what a command, by its first word, is answered with
    ServerReply(QByteArray word, std::optional<QByteArray> line)
        : command(std::move(word)), reply(std::move(line)) {}
    Progress play(Stage& stage) const override;

    const QByteArray command;
    const std::optional<QByteArray> reply; // none: as usual again
};

struct ServerParams : Action { // time constant, seconds, and four trigger levels, volts
    ServerParams(double seconds, const std::array<double, 4>& volts)
        : timeConstant(seconds), levels(volts) {}
    Progress play(Stage& stage) const override;

    const double timeConstant;
    const std::array<double, 4> levels;
};

} // namespace panel::script
