#pragma once

#include "command.h"

#include <optional>

namespace panel {
struct ProcessEnd;
}

namespace panel::script {

// Waits for anything but frames.
const CommandTable& waitCommands();

struct WaitTime : Action {
    explicit WaitTime(std::chrono::milliseconds time) : duration(time) {}
    Progress play(Stage& stage) const override;

    const std::chrono::milliseconds duration;
};

struct WaitRequest : Action { // until the server has got one since the last wait or mark
    explicit WaitRequest(QString text) : pattern(std::move(text)) {}
    Progress play(Stage& stage) const override;
    bool takesLimit() const override { return true; }
    QString instead(Stage& stage) const override;

    const QString pattern;
};

struct WaitLog : Action { // until the application has written a line since the last wait or mark
    explicit WaitLog(QString text) : pattern(std::move(text)) {}
    Progress play(Stage& stage) const override;
    bool takesLimit() const override { return true; }
    QString instead(Stage& stage) const override;

    const QString pattern;
};

struct WaitConnection : Action { // until the server has (or has no) client
    explicit WaitConnection(bool there) : connected(there) {}
    Progress play(Stage& stage) const override;
    bool takesLimit() const override { return true; }
    QString instead(Stage& stage) const override;

    const bool connected;
};

struct WaitExit : Action { // until the application ends; without status or signal any end will do
    WaitExit(std::optional<int> exitStatus, std::optional<int> signalNumber)
        : status(exitStatus), signal(signalNumber) {}
    Progress play(Stage& stage) const override;
    bool takesLimit() const override { return true; }
    bool isMetBy(const ProcessEnd& end) const;

    const std::optional<int> status;
    const std::optional<int> signal;
};

} // namespace panel::script
