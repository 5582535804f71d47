#pragma once

#include "animationcommands.h"
#include "animations.h"
#include "commandset.h"
#include "flashcommands.h"
#include "listcommands.h"
#include "machine.h"
#include "matrixcommands.h"
#include "memorycommands.h"
#include "snapshotcommands.h"
#include "streamcommands.h"
#include "tracker.h"
#include "widgetcommands.h"

namespace controller {

// All that the coprocessor can do: the groups of commands, each with its state, and what goes on
// from frame to frame.
//
// Commands that exist but are not modelled are complained about: self-tests (CRC, HAMMERAUX, MARCH,
// IDCT, EXECUTE), video (PLAYVIDEO, VIDEO...), E3's animations, SHA1 and HMAC.
class Commands {
public:
    explicit Commands(Machine& machine);
    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    // May throw a Fault, as what comes of it may.
    Outcome execute(const Call& call);
    // State as after power-on; nothing goes on.
    void reset();
    void frameEnded();
    // Whether an animation decides what the panel shows.
    bool animate() const { return m_animations.decidePicture(); }

private:
    // The state of the groups; all of it outlives DLSTART.
    void coldStart(const Call& call);

    Machine& m_machine;
    CommandSet m_set;
    Animations m_animations;
    Tracker m_tracker;
    ListCommands m_list;
    WidgetCommands m_widgets;
    MatrixCommands m_matrix;
    MemoryCommands m_memory;
    StreamCommands m_streams;
    SnapshotCommands m_snapshots;
    AnimationCommands m_animated;
    FlashCommands m_flash;
};

} // namespace controller
