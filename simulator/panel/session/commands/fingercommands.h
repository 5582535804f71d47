#pragma once

#include "command.h"

namespace panel::script {

// What the finger does on the panel.
const CommandTable& fingerCommands();

struct Finger : Action {
    enum class Kind : std::uint8_t { Press, Move, Release, Tap };

    Finger(Kind what, int toX, int toY, bool atOnce) : kind(what), x(toX), y(toY), now(atOnce) {}
    Progress play(Stage& stage) const override;
    bool takesLimit() const override { return true; }
    QString instead(Stage& stage) const override;

    const Kind kind;
    const int x; // panel pixels; none for Release
    const int y;
    const bool now; // do not wait until the application has noticed

private:
    void begin(Stage& stage) const;
};

} // namespace panel::script
