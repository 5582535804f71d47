#pragma once

#include "controller.h"
#include "exitstatus.h"
#include "panelcontent.h"

#include <QImage>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>

namespace panel {
class HeldTouch;
class Inspector;
class Rig;
} // namespace panel

// What the lines of a script do. Each command of the language is a class derived from Action, or
// from FrameStep when it looks at frames, in the file of its role; a Command (command.h) in that
// file's table makes one of a line.
namespace panel::script {

// What actions are played on.
class Stage {
public:
    Stage() = default;
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    virtual ~Stage() = default;

    virtual Rig& rig() = 0;
    virtual HeldTouch& finger() = 0;
    // Whether the current action's play() is called for the first time, and how long ago that was.
    virtual bool isFirstCall() const = 0;
    virtual std::chrono::milliseconds elapsed() const = 0;

    // Ends the session; the message begins with the current line.
    virtual void fail(const QString& why, ExitStatus status = ExitStatus::NotMet) = 0;
    // Keeps or compares the picture; one that differs ends the session only after its last line.
    virtual void keepPicture(const QString& name, const QImage& image,
                             const std::vector<PanelText>& texts) = 0;
    virtual void endScript() = 0;

    // Hands the current frame step, and those that follow it, over to the frames.
    virtual void playFrames() = 0;
};

enum class Progress { Done, Waiting };

class Action {
public:
    Action() = default;
    Action(const Action&) = delete;
    Action& operator=(const Action&) = delete;
    virtual ~Action() = default;

    // Called again and again, some 200 times a second, until it is done or has failed.
    virtual Progress play(Stage& stage) const = 0;

    // Whether it waits for something, so that its line may say "within TIME".
    virtual bool takesLimit() const { return false; }
    // What there is instead of what it waits for, for the message when its time is over.
    virtual QString instead(Stage& /*stage*/) const { return {}; }
};

using ActionPtr = std::shared_ptr<const Action>;

// --- What looks at frames. Lines of this kind that follow each other look at one frame after the
// --- other, each from the frame on at which the line before was content, so none is missed.

// A frame, and what has happened since the step was entered.
struct FrameView {
    const controller::Controller& controller;
    std::uint32_t frames = 0;
    std::uint32_t swaps = 0;
    std::uint32_t touchTagReads = 0;
    const Inspector* inspector =
        nullptr; // for what it tells of the controller; null: there is none
};

struct FrameOutcome {
    bool ended = false;
    QString failure = {}; // not empty: the session has failed
    // What is to be done with what was seen; called later, outside of the module.
    std::function<void(Stage&)> then = {};
};

class FrameStep : public Action {
public:
    // Looks at the frame at hand; called for that of the step before, and then for each new one
    // until it has ended. The module is locked meanwhile: be quick.
    virtual FrameOutcome look(const FrameView& view) const = 0;

    Progress play(Stage& stage) const final;
};

using FrameStepPtr = std::shared_ptr<const FrameStep>;

} // namespace panel::script
