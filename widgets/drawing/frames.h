#pragma once

#include <cstdint>

struct Gpu_Hal_Context_t;

// The life of one picture on the display. What waits for the coprocessor does so without a
// time-out.

// Finishes the static display list drawn since Gpu_CoCmd_Dlstart(): sends it, waits until the
// coprocessor has written it, and appends its copy to `address` of the controller's general memory
// to the command buffer, to be done with what is sent next. Returns the list's size in bytes.
uint16_t saveStaticPicture(Gpu_Hal_Context_t* host, uint32_t address);

// Starts a frame with the static picture saved at `address`. Only appends to the command buffer.
void startFrame(Gpu_Hal_Context_t* host, uint32_t address, uint16_t size);

// Ends the display list, puts it on the screen, sends all that is still buffered and waits until
// the coprocessor has done it.
void showFrame(Gpu_Hal_Context_t* host);
