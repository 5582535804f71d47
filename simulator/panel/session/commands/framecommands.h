#pragma once

#include "command.h"
#include "soughttext.h"

namespace panel::script {

// What looks at frames: waits for what the panel shows, expectations of it, screenshots.
const CommandTable& frameCommands();

struct WaitFrames : FrameStep { // until so many more frames have been scanned
    explicit WaitFrames(std::uint32_t number) : count(number) {}
    FrameOutcome look(const FrameView& view) const override;
    bool takesLimit() const override { return true; }

    const std::uint32_t count;
};

struct WaitSwaps : FrameStep { // until so many more display lists have been shown
    explicit WaitSwaps(std::uint32_t number) : count(number) {}
    FrameOutcome look(const FrameView& view) const override;
    bool takesLimit() const override { return true; }

    const std::uint32_t count;
};

struct WaitReads : FrameStep { // until the application has read the touch tag so many more times
    explicit WaitReads(std::uint32_t number) : count(number) {}
    FrameOutcome look(const FrameView& view) const override;
    bool takesLimit() const override { return true; }
    QString instead(Stage& stage) const override;

    const std::uint32_t count;
};

struct WaitText : FrameStep { // until a frame shows (or does not show) a text
    WaitText(SoughtText what, bool shown) : text(std::move(what)), present(shown) {}
    FrameOutcome look(const FrameView& view) const override;
    bool takesLimit() const override { return true; }
    QString instead(Stage& stage) const override;

    const SoughtText text;
    const bool present;
};

struct WaitQuiet : FrameStep { // until the coprocessor is idle and no swap is pending
    FrameOutcome look(const FrameView& view) const override;
    bool takesLimit() const override { return true; }
    QString instead(Stage& stage) const override;
};

struct ExpectText : FrameStep { // the frame at hand shows (or does not show) a text
    ExpectText(SoughtText what, bool shown) : text(std::move(what)), present(shown) {}
    FrameOutcome look(const FrameView& view) const override;

    const SoughtText text;
    const bool present;
};

struct Screenshot : FrameStep {
    Screenshot(QString fileName, bool atOnce) : name(std::move(fileName)), now(atOnce) {}
    FrameOutcome look(const FrameView& view) const override;
    bool takesLimit() const override { return true; }
    QString instead(Stage& stage) const override;

    const QString name; // of the file, without ".png"
    const bool now;     // of the frame at hand, otherwise of the first quiet one
};

// Whether the coprocessor has done all it was given and no swap is pending.
bool isQuiet(const controller::Controller& controller);

} // namespace panel::script
