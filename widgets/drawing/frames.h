#pragma once

#include <cstdint>

struct Gpu_Hal_Context_t;

// The life of one picture on the display. All of these block until the coprocessor is idle, without
// a time-out, except startFrame(), which only appends to the command buffer.

// Finishes the static display list drawn since Gpu_CoCmd_Dlstart() and copies it to `address` of
// the controller's general memory. Returns its size in bytes.
uint16_t saveStaticPicture(Gpu_Hal_Context_t* host, uint32_t address);

// Starts a frame with the static picture saved at `address`.
void startFrame(Gpu_Hal_Context_t* host, uint32_t address, uint16_t size);

// Ends the display list, puts it on the screen and sends all that is still buffered.
void showFrame(Gpu_Hal_Context_t* host);
