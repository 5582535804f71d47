#pragma once

#include <functional>

struct Gpu_Hal_Context_t;

// What readTouchTag() returns when no tagged item is touched.
constexpr int noTouch = 0;

// The tag (1..254) of the item under the finger, or noTouch. The controller's 255, a touch on
// nothing tagged, counts as no touch.
int readTouchTag(Gpu_Hal_Context_t* host);

// Calls `hook` at the end of every readTouchTag() from now on; an empty one ends that.
void setTouchPollHook(std::function<void()> hook);

enum class TouchChange {
    None, // also when the finger slides from one item to another
    Press,
    Release, // of the item that was held last
};

// What it means that the finger is on the item `now` when it was on `held` at the last look; both
// may be noTouch.
constexpr TouchChange touchChange(int held, int now) {
    if ((held == noTouch) == (now == noTouch)) {
        return TouchChange::None;
    }
    return held == noTouch ? TouchChange::Press : TouchChange::Release;
}
