#pragma once

#include "command.h"
#include "soughttext.h"

#include <variant>

namespace panel::script {

// What the finger does on the panel.
const CommandTable& fingerCommands();

struct Finger : Action {
    enum class Kind : std::uint8_t { Press, Move, Release, Tap };

    // Where to: a pixel of the panel, a text on it or what carries a tag; nowhere for Release.
    using Target = std::variant<std::monostate, QPoint, SoughtText, int>;

    Finger(Kind what, Target where, bool atOnce)
        : kind(what), target(std::move(where)), now(atOnce) {}
    Progress play(Stage& stage) const override;
    bool takesLimit() const override { return true; }
    QString instead(Stage& stage) const override;

    const Kind kind;
    const Target target;
    const bool now; // do not wait until the application has noticed

private:
    bool begin(Stage& stage) const;
};

} // namespace panel::script
