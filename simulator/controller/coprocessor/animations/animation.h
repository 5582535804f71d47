#pragma once

namespace controller {

// What goes on from frame to frame until a command or a new list ends it.
class Animation {
public:
    virtual ~Animation() = default;
    // A frame has been scanned.
    virtual void frameEnded() = 0;
};

} // namespace controller
