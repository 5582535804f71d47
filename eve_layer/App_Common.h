#pragma once

// What the screens draw with: the host-side command buffer, touch and sound conveniences, and the
// display's bring-up, touch calibration and built-in logo animation.
//
// A frame is Gpu_CoCmd_Dlstart(), display-list words and coprocessor commands,
// App_WrCoCmd_Buffer(host, DISPLAY()), Gpu_CoCmd_Swap(), App_Flush_Co_Buffer().
//
// Module state, one set per program; main thread only. Transfers are not checked for failure.

#include "Gpu_Hal.h"

#include <cstdint>

// --- command buffer (App_Common.cpp)

constexpr uint32_t cmdBufferSize = 4096; // it counts as full from this many bytes on
constexpr uint32_t dlBufferSize = 8192;

// Pending coprocessor stream, and the bytes of it in use (a multiple of 4). A string that starts in
// the buffer may run past its end, into room that lies behind it.
extern uint8_t (&CmdBuffer)[cmdBufferSize];
extern uint32_t CmdBuffer_Index;

// Pending display-list words, and the bytes of them in use. The index counts on past the buffer's
// size when words had to be dropped.
extern uint8_t DlBuffer[dlBufferSize];
extern uint32_t DlBuffer_Index;

// Appends one word of the coprocessor stream. A full buffer is first sent, without waiting for the
// coprocessor to consume it.
void App_WrCoCmd_Buffer(Gpu_Hal_Context_t* host, uint32_t word);

// Appends a string and its terminating zero, and pads to a whole word with whatever the buffer
// held. A full buffer is first sent, waiting until it is consumed, and "CmdBuffer overflow" is
// printed on standard output; so it is when a string is cut because even the room behind the
// buffer, 512 bytes, does not hold it.
void App_WrCoStr_Buffer(Gpu_Hal_Context_t* host, const char* s);

// Appends one word for App_Flush_DL_Buffer(). When the buffer has no room for it the word is
// dropped and "DlBuffer overflow" printed on standard output.
void App_WrDl_Buffer(Gpu_Hal_Context_t* host, uint32_t word);

// Writes the pending display-list words straight to display-list memory, without a swap.
void App_Flush_DL_Buffer(Gpu_Hal_Context_t* host);

// Sends the pending coprocessor stream. The first waits until the coprocessor has consumed all of
// it, the second only for free space in the command FIFO. No time-out. Nothing pending: no traffic.
void App_Flush_Co_Buffer(Gpu_Hal_Context_t* host);
void App_Flush_Co_Buffer_nowait(Gpu_Hal_Context_t* host);

// Set the index of a buffer, a multiple of 4; 0 discards the pending words. Beyond its size a
// buffer counts as full: nothing is read or written there.
void App_Set_DlBuffer_Index(uint32_t index);
void App_Set_CmdBuffer_Index(uint32_t index);

// --- touch and sound (App_Common.cpp)

// Polls the touch tag. Returns a tag once, at the first poll after its release (the last one
// touched before the release), and 0 at every other poll.
uint8_t App_Read_Tag(Gpu_Hal_Context_t* host);

// As App_Read_Tag() with a memory of its own; also stores the tag being touched (0: none) and the
// touch position in pixels (both 0x8000: none).
uint8_t App_Touch_Update(Gpu_Hal_Context_t* host, uint8_t* touched_tag, uint16_t* x, uint16_t* y);

// Starts a sound and returns at once. volume: 0..255; note: MIDI note number.
void App_Play_Sound(Gpu_Hal_Context_t* host, uint8_t sound, uint8_t volume, uint8_t note);

// --- display (App_Bringup.cpp)

// Takes the controller from power-off to a running, cleared panel with the timing of the registry's
// panel size, and opens `host`. The registry must be filled for the fitted generation.
// Blocks for about 0.35 s, and for ever while no controller answers.
void App_Common_Init(Gpu_Hal_Context_t* host);

// Closes the connection; the controller is left as it is.
void App_Common_Close(Gpu_Hal_Context_t* host);

// Shows the three calibration dots and blocks until each has been tapped; the controller then has
// the new touch transform.
void App_Calibrate_Screen(Gpu_Hal_Context_t* host);

// --- logo (App_Logo.cpp)

// Plays the logo animation, 120 frames, and leaves the screen cleared. Overwrites general memory
// from address 0 on. Blocks while it plays.
void App_Show_Logo(Gpu_Hal_Context_t* host);
