#pragma once

#include "animations.h"
#include "commandset.h"
#include "machine.h"
#include "tracker.h"
#include "widgets.h"

namespace controller {

// What begins and ends what goes on from frame to frame.
class AnimationCommands {
public:
    AnimationCommands(Machine& machine, Animations& animations, Tracker& tracker,
                      const WidgetColors& colors)
        : m_machine(machine), m_animations(animations), m_tracker(tracker), m_colors(colors) {}
    void addTo(CommandSet& set);

private:
    void spinner(const Call& call);
    void stop(const Call& call);
    Outcome calibrate(const Call& call);
    Outcome logo(const Call& call);
    void screenSaver(const Call& call);
    void sketch(const Call& call);
    void cSketch(const Call& call);
    void track(const Call& call);

    Machine& m_machine;
    Animations& m_animations;
    Tracker& m_tracker;
    const WidgetColors& m_colors;
};

} // namespace controller
