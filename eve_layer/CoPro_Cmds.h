#pragma once

// The coprocessor commands, one function each. A command is appended to the application's command
// buffer (App_Common.h) and reaches the controller when that buffer is flushed.
//
// Argument types follow the command's layout in the stream:
//   - two arguments that share a word are 16 bits wide: int16_t for positions, sizes, radii and
//     fonts, uint16_t for options, values and ranges;
//   - an argument that fills a word is int32_t when it may be negative (16.16 factors and
//     distances, angles at 65536 a turn, the points of a transform) and uint32_t otherwise
//     (colours 0xRRGGBB, addresses, counts, a value or range that stands alone).
// `result` arguments, and those of Gpu_CoCmd_GetProps() and Gpu_CoCmd_GetMatrix(), are placeholder
// words that the coprocessor replaces in command memory; read them there once it is done.
//
// A command that the controller's generation lacks ends the process through a failed assertion
// before anything is appended; the headings say which. Nothing else can fail.

#include "Gpu_Hal.h"

#include <cstdint>

// --- what every command is made of

void Gpu_Copro_SendCmd(Gpu_Hal_Context_t* host, uint32_t word);
void Gpu_CoCmd_SendStr(Gpu_Hal_Context_t* host, const char* s);
// Called before and after a command with its length in bytes. Empty: commands are buffered.
void Gpu_CoCmd_StartFunc(Gpu_Hal_Context_t* host, uint16_t bytes);
void Gpu_CoCmd_EndFunc(Gpu_Hal_Context_t* host, uint16_t bytes);

// --- frames and the state of the coprocessor

void Gpu_CoCmd_Dlstart(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_Swap(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_ColdStart(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_Interrupt(Gpu_Hal_Context_t* host, uint32_t ms);
void Gpu_CoCmd_Append(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num);
void Gpu_CoCmd_RegRead(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t result);
void Gpu_CoCmd_BgColor(Gpu_Hal_Context_t* host, uint32_t rgb);
void Gpu_CoCmd_FgColor(Gpu_Hal_Context_t* host, uint32_t rgb);
void Gpu_CoCmd_GradColor(Gpu_Hal_Context_t* host, uint32_t rgb);
// EVE_2 and EVE_3:
void Gpu_CoCmd_Sync(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_SetRotate(Gpu_Hal_Context_t* host, uint32_t r);
void Gpu_CoCmd_SetScratch(Gpu_Hal_Context_t* host, uint32_t handle);
void Gpu_CoCmd_Int_RAMShared(Gpu_Hal_Context_t* host, uint32_t ptr);
void Gpu_CoCmd_Int_SWLoadImage(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t options);
// EVE_3:
void Gpu_CoCmd_Nop(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_AppendF(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num);
void Gpu_CoCmd_Int_RamShared(Gpu_Hal_Context_t* host, uint32_t ptr);

// --- text and numbers

// Text, Button and Toggle: with the option "__OPT_FORMAT" on EVE_3, one uint32_t must follow `s`
// for every value that COUNT_ARGS(s) counts. Without it nothing after `s` is looked at.
void Gpu_CoCmd_Text(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t font, uint16_t options,
                    const char* s, ...);
void Gpu_CoCmd_Number(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t font, uint16_t options,
                      uint32_t n);
// The base of Gpu_CoCmd_Number(), 2..36. EVE_2 and EVE_3.
void Gpu_CoCmd_SetBase(Gpu_Hal_Context_t* host, uint32_t base);
// The width in pixels that "__OPT_FILL" breaks lines at. EVE_3.
void Gpu_CoCmd_FillWidth(Gpu_Hal_Context_t* host, uint32_t s);

// The values that a format text takes: its percent signs, a doubled one counting none. Modulo 256.
// EVE_3.
uint8_t COUNT_ARGS(const char* s);

void Gpu_CoCmd_SetFont(Gpu_Hal_Context_t* host, uint32_t font, uint32_t ptr);
// EVE_2 and EVE_3:
void Gpu_CoCmd_SetFont2(Gpu_Hal_Context_t* host, uint32_t font, uint32_t ptr, uint32_t firstchar);
void Gpu_CoCmd_RomFont(Gpu_Hal_Context_t* host, uint32_t font, uint32_t romslot);
// EVE_3:
void Gpu_CoCmd_ResetFonts(Gpu_Hal_Context_t* host);

// --- widgets

void Gpu_CoCmd_Button(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                      int16_t font, uint16_t options, const char* s, ...);
// state: 0 off .. 65535 on. s: both labels, with the byte 255 between them.
void Gpu_CoCmd_Toggle(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t font,
                      uint16_t options, uint16_t state, const char* s, ...);
void Gpu_CoCmd_Keys(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                    int16_t font, uint16_t options, const char* s);
void Gpu_CoCmd_Gauge(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t r, uint16_t options,
                     uint16_t major, uint16_t minor, uint16_t val, uint16_t range);
void Gpu_CoCmd_Clock(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t r, uint16_t options,
                     uint16_t h, uint16_t m, uint16_t s, uint16_t ms);
void Gpu_CoCmd_Dial(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t r, uint16_t options,
                    uint32_t val);
void Gpu_CoCmd_Slider(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                      uint16_t options, uint16_t val, uint32_t range);
void Gpu_CoCmd_Progress(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                        uint16_t options, uint16_t val, uint32_t range);
void Gpu_CoCmd_Scrollbar(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                         uint16_t options, uint16_t val, uint16_t size, uint16_t range);
void Gpu_CoCmd_Gradient(Gpu_Hal_Context_t* host, int16_t x0, int16_t y0, uint32_t rgb0, int16_t x1,
                        int16_t y1, uint32_t rgb1);
// Colours are 0xAARRGGBB. EVE_3.
void Gpu_CoCmd_GradientA(Gpu_Hal_Context_t* host, int16_t x0, int16_t y0, uint32_t argb0,
                         int16_t x1, int16_t y1, uint32_t argb1);

// --- animations that the coprocessor runs by itself, until Gpu_CoCmd_Stop()

// style: 0 circle of dots, 1 line of dots, 2 clock hand, 3 two orbiting dots. scale: 0 small ..
// 2 full screen.
void Gpu_CoCmd_Spinner(Gpu_Hal_Context_t* host, int16_t x, int16_t y, uint16_t style,
                       uint16_t scale);
void Gpu_CoCmd_ScreenSaver(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_Sketch(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                      uint32_t ptr, uint32_t format);
void Gpu_CoCmd_Stop(Gpu_Hal_Context_t* host);
// The controller's own logo; wait for its end with Gpu_Hal_WaitLogo_Finish().
void Gpu_CoCmd_Logo(Gpu_Hal_Context_t* host);
// EVE_3:
void Gpu_CoCmd_AnimStart(Gpu_Hal_Context_t* host, uint32_t ch, uint32_t aoptr, uint32_t loop);
void Gpu_CoCmd_AnimStop(Gpu_Hal_Context_t* host, uint32_t ch);
void Gpu_CoCmd_AnimXY(Gpu_Hal_Context_t* host, uint32_t ch, int16_t x, int16_t y);
void Gpu_CoCmd_AnimDraw(Gpu_Hal_Context_t* host, uint32_t ch);
void Gpu_CoCmd_AnimFrame(Gpu_Hal_Context_t* host, int16_t x, int16_t y, uint32_t aoptr,
                         uint32_t frame);

// --- touch

void Gpu_CoCmd_Calibrate(Gpu_Hal_Context_t* host, uint32_t result);
void Gpu_CoCmd_Track(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                     uint32_t tag);
void Gpu_CoCmd_TouchTransform(Gpu_Hal_Context_t* host, int32_t x0, int32_t y0, int32_t x1,
                              int32_t y1, int32_t x2, int32_t y2, int32_t tx0, int32_t ty0,
                              int32_t tx1, int32_t ty1, int32_t tx2, int32_t ty2, uint32_t result);
// EVE_3:
void Gpu_CoCmd_GetPoint(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int32_t sx, int32_t sy);

// --- bitmaps and their transform

// The first four change the coprocessor's matrix; what is given last acts on the picture first.
// Gpu_CoCmd_SetMatrix() writes the matrix to the display list. Distances and factors are 16.16;
// angles count 65536 a turn, clockwise.
void Gpu_CoCmd_LoadIdentity(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_Translate(Gpu_Hal_Context_t* host, int32_t tx, int32_t ty);
void Gpu_CoCmd_Scale(Gpu_Hal_Context_t* host, int32_t sx, int32_t sy);
void Gpu_CoCmd_Rotate(Gpu_Hal_Context_t* host, int32_t angle);
void Gpu_CoCmd_SetMatrix(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_GetMatrix(Gpu_Hal_Context_t* host, uint32_t a, uint32_t b, uint32_t c, uint32_t d,
                         uint32_t e, uint32_t f);
void Gpu_CoCmd_BitmapTransform(Gpu_Hal_Context_t* host, int32_t x0, int32_t y0, int32_t x1,
                               int32_t y1, int32_t x2, int32_t y2, int32_t tx0, int32_t ty0,
                               int32_t tx1, int32_t ty1, int32_t tx2, int32_t ty2, uint32_t result);
// EVE_3. x, y: the centre in pixels; a: angle; s: 16.16 factor.
void Gpu_CoCmd_RotateAround(Gpu_Hal_Context_t* host, int32_t x, int32_t y, int32_t a, int32_t s);
// EVE_2 and EVE_3. w, h: pixels.
void Gpu_CoCmd_SetBitmap(Gpu_Hal_Context_t* host, uint32_t addr, uint16_t fmt, int16_t w,
                         uint32_t h);
void Gpu_CoCmd_Snapshot(Gpu_Hal_Context_t* host, uint32_t ptr);
// EVE_2 and EVE_3:
void Gpu_CoCmd_Snapshot2(Gpu_Hal_Context_t* host, uint32_t fmt, uint32_t ptr, int16_t x, int16_t y,
                         int16_t w, int16_t h);

// --- images, video and memory. Where the command takes data, the caller appends it next.

void Gpu_CoCmd_Inflate(Gpu_Hal_Context_t* host, uint32_t ptr);
void Gpu_CoCmd_LoadImage(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t options);
void Gpu_CoCmd_GetPtr(Gpu_Hal_Context_t* host, uint32_t result);
void Gpu_CoCmd_GetProps(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t w, uint32_t h);
void Gpu_CoCmd_MemWrite(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num);
void Gpu_CoCmd_Memcpy(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src, uint32_t num);
void Gpu_CoCmd_MemSet(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t value, uint32_t num);
void Gpu_CoCmd_MemZero(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num);
void Gpu_CoCmd_MemCrc(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num, uint32_t result);
// EVE_2 and EVE_3:
void Gpu_CoCmd_MediaFifo(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t size);
void Gpu_CoCmd_PlayVideo(Gpu_Hal_Context_t* host, uint32_t options);
void Gpu_CoCmd_VideoStart(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_VideoFrame(Gpu_Hal_Context_t* host, uint32_t dst, uint32_t ptr);
// EVE_3:
void Gpu_CoCmd_VideoStartF(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_Inflate2(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t options);
void Gpu_CoCmd_Sha1(Gpu_Hal_Context_t* host, uint32_t src, uint32_t num, uint32_t hash);

// --- the controller's clock. EVE_2 and EVE_3.

// Samples the clock register at the next frame boundary into general memory, at addresses 0 and 4
// in turn; returns when it is done.
void Set_GpuClock(Gpu_Hal_Context_t* host);
// The controller clocks between the last two samples, whichever is the newer.
uint32_t Get_GpuClock(Gpu_Hal_Context_t* host);

// --- compressed bitmaps

// The BITMAP_EXT_FORMAT() format of a block of w x h pixels; 0 for any other block, and for every
// block before EVE_3.
uint32_t GET_ASTC_FORMAT(uint16_t w, uint16_t h);

// Reorders w x h blocks of 16 bytes, `size` bytes in all, from rows at `src` into the tiles of
// 2 x 2 that the controller reads, at `dst`. The two must not overlap; `src` is only read.
void astc_tile2(uint8_t* src, uint16_t w, uint16_t h, uint32_t size, uint8_t* dst);

// --- flash. EVE_3. Addresses in flash and in controller memory, counts in bytes.

void Gpu_CoCmd_FlashErase(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_FlashAttach(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_FlashDetach(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_FlashSpiDesel(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_ClearCache(Gpu_Hal_Context_t* host);
// The caller appends the data.
void Gpu_CoCmd_FlashWrite(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num);
// Sends the data too: whole words, so up to 3 bytes behind data[num - 1] are read.
void Gpu_CoCmd_FlashWriteExt(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t num,
                             const uint8_t* data);
void Gpu_CoCmd_FlashUpdate(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src, uint32_t num);
void Gpu_CoCmd_FlashRead(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src, uint32_t num);
void Gpu_CoCmd_FlashSource(Gpu_Hal_Context_t* host, uint32_t ptr);
void Gpu_CoCmd_FlashSpiTx(Gpu_Hal_Context_t* host, uint32_t num);
void Gpu_CoCmd_FlashSpiRx(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num);
void Gpu_CoCmd_FlashFast(Gpu_Hal_Context_t* host, uint32_t result);

// --- flash helper. EVE_3. These block until the coprocessor is done, without a
// time-out, unless told otherwise.

enum Flash_Cmd_Status_t : uint32_t {
    Flash_Cmd_Ok = 0,
    Flash_Cmd_Misaligned = 1, // nothing was sent
};

// One of "__FLASH_STATUS_INIT", "__FLASH_STATUS_DETACHED", "__FLASH_STATUS_BASIC" and
// "__FLASH_STATUS_FULL".
uint8_t Gpu_CoCmd_FlashHelper_GetState(Gpu_Hal_Context_t* host);

// Appends attach commands until the flash is no longer detached. They are only appended: unless
// something else flushes, they leave when they have filled the command buffer.
void Gpu_CoCmd_FlashHelper_Init(Gpu_Hal_Context_t* host);

void Gpu_CoCmd_FlashHelper_Erase(Gpu_Hal_Context_t* host);
void Gpu_CoCmd_FlashHelper_ClearCache(Gpu_Hal_Context_t* host);

// Writes whole pages of 256 bytes to erased flash; the last is filled up with 0xFF.
// dest: a multiple of 256.
Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Write(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t num,
                                               const uint8_t* data);

// Brings whole sectors of 4096 bytes in flash to what controller memory holds at src; num is
// rounded up. dest: a multiple of 4096; src: a multiple of 4.
Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Update(Gpu_Hal_Context_t* host, uint32_t dest,
                                                uint32_t src, uint32_t num);

// Copies from flash to controller memory at dest and from there to `out`; num is rounded down to a
// multiple of 4. dest: a multiple of 4; src: a multiple of 64.
Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Read(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src,
                                              uint32_t num, uint8_t* out);

// Moves the flash to a state: detached and basic change into one another, basic becomes full, full
// becomes basic only through detached. Returns 0; 0xFFFF for an unknown state; for full the
// fast-mode command's result word as it stood before the command was known to be done. To be sure
// of it, use Gpu_CoCmd_FlashHelper_SwitchFullMode().
uint32_t Gpu_CoCmd_FlashHelper_SwitchState(Gpu_Hal_Context_t* host, uint8_t state);

// Detaches, attaches and enters full speed, each waited for. Returns 1 when the flash is in full
// mode, 0 when a step did not lead to its state.
uint32_t Gpu_CoCmd_FlashHelper_SwitchFullMode(Gpu_Hal_Context_t* host);
