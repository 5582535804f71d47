#pragma once

#include <functional>

// Calls `hook` after every look at the touch from now on, be it a screen's or the keypad's: each
// time the panel has shown that it takes the user's input. An empty hook ends that.
void onTouchPoll(std::function<void()> hook);
