#pragma once

struct Gpu_Hal_Context_t;

// What readTouchTag() returns when no tagged item is touched.
constexpr int noTouch = 0;

// The tag (1..254) of the item under the finger, or noTouch. The controller's 255, a touch on
// nothing tagged, counts as no touch.
int readTouchTag(Gpu_Hal_Context_t* host);
