#pragma once

#include "../platform/platform.h"

#include <cstdint>

// Access to the display controller from the host: reads and writes of its memory over SPI, host
// commands, power, the coprocessor's command FIFO, display-list swap, other rings in its memory,
// and a few drawing helpers. All blocking, main thread only. Multi-byte values are little-endian on
// the wire. Nothing here reports an SPI failure: a failed transfer reads as 0.

// The values that the functions below take are plain numbers with names.

using GPU_TRANSFERDIR_T = uint32_t;
constexpr GPU_TRANSFERDIR_T GPU_READ = 0;
constexpr GPU_TRANSFERDIR_T GPU_WRITE = 1;

// What Gpu_Hal_Context_t::transfer_state holds.
constexpr uint32_t GPU_TRANSFER_IDLE = 0;
constexpr uint32_t GPU_TRANSFER_READING = 1;
constexpr uint32_t GPU_TRANSFER_WRITING = 2;
constexpr uint32_t GPU_TRANSFER_CLOSED = 3; // after Gpu_Hal_Close()

// Each value of the next three is the host command itself.
using GPU_PLL_SOURCE_T = uint32_t;
constexpr GPU_PLL_SOURCE_T GPU_CLOCK_EXTERNAL = 0x44;
constexpr GPU_PLL_SOURCE_T GPU_CLOCK_INTERNAL = 0x48;

using GPU_PLL_FREQ_T = uint32_t; // of EVE_1
constexpr GPU_PLL_FREQ_T GPU_PLL_36MHZ = 0x61;
constexpr GPU_PLL_FREQ_T GPU_PLL_48MHZ = 0x62;

using GPU_POWER_MODE_T = uint32_t;
constexpr GPU_POWER_MODE_T GPU_POWER_ACTIVE = 0x00;
constexpr GPU_POWER_MODE_T GPU_POWER_STANDBY = 0x41;
constexpr GPU_POWER_MODE_T GPU_POWER_SLEEP = 0x42;
constexpr GPU_POWER_MODE_T GPU_POWER_DOWN = 0x50;

// System clock of EVE_2 and EVE_3: the chip's default or a multiple of its 12 MHz crystal.
using GPU_81X_PLL_FREQ_T = uint32_t;
constexpr GPU_81X_PLL_FREQ_T GPU_81X_PLL_DEFAULT = 0;
constexpr GPU_81X_PLL_FREQ_T GPU_81X_PLL_24MHZ = 2;
constexpr GPU_81X_PLL_FREQ_T GPU_81X_PLL_36MHZ = 3;
constexpr GPU_81X_PLL_FREQ_T GPU_81X_PLL_48MHZ = 4;
constexpr GPU_81X_PLL_FREQ_T GPU_81X_PLL_60MHZ = 5;
constexpr GPU_81X_PLL_FREQ_T GPU_81X_PLL_72MHZ = 6;

// Drive strength, 0 (weakest) to 3, of one of the groups 0 to 7 of the controller's pins.
using GPU_81X_GPIO_DRIVE_STRENGTH_T = uint32_t;
using GPU_81X_GPIO_GROUP_T = uint32_t;

using GPU_SPI_NUMCHANNELS_T = uint32_t;
constexpr GPU_SPI_NUMCHANNELS_T GPU_SPI_SINGLE_CHANNEL = 0;
constexpr GPU_SPI_NUMCHANNELS_T GPU_SPI_DUAL_CHANNEL = 1;
constexpr GPU_SPI_NUMCHANNELS_T GPU_SPI_QUAD_CHANNEL = 2;

using GPU_SPI_NUMDUMMYBYTES = uint32_t;
constexpr GPU_SPI_NUMDUMMYBYTES GPU_SPI_ONE_DUMMY = 1;
constexpr GPU_SPI_NUMDUMMYBYTES GPU_SPI_TWO_DUMMY = 2;

// One opened controller. Owned by the caller; the functions below keep it up to date.
struct Gpu_Hal_Context_t {
    uint16_t cmd_write_offset = 0; // where the command FIFO is written next: 0..4092, multiple of 4
    uint16_t dl_write_index = 0;
    uint32_t transfer_state = GPU_TRANSFER_IDLE;
    uint8_t spi_lanes = GPU_SPI_SINGLE_CHANNEL;  // a GPU_SPI_NUMCHANNELS_T
    uint8_t spi_dummy_count = GPU_SPI_ONE_DUMMY; // a GPU_SPI_NUMDUMMYBYTES
};

// ---- Lifecycle ----

// Builds the board on first use; see platform_init().
void Gpu_Hal_Init();
void Gpu_Hal_DeInit();

// Ends power-down, deselects the controller, opens the SPI device and resets `host`, except
// `spi_lanes`. Does not power-cycle.
void Gpu_Hal_Open(Gpu_Hal_Context_t* host);
void Gpu_Hal_Close(Gpu_Hal_Context_t* host);

// ---- Transfers ----
//
// Addresses are 22-bit controller addresses. A transfer is one bracket of chip select; the address
// counts up by itself within it. Headers are one SPI message, every data byte is one of its own.

// Selects the controller and sends the address header. A transfer still open is not ended first.
void Gpu_Hal_StartTransfer(Gpu_Hal_Context_t* host, GPU_TRANSFERDIR_T dir, uint32_t addr);
// The same, at the command FIFO's write offset.
void Gpu_Hal_StartCmdTransfer(Gpu_Hal_Context_t* host, GPU_TRANSFERDIR_T dir);
// One byte each way.
uint8_t Gpu_Hal_Transfer8(uint8_t value);
// While writing, sends `value` and returns 0; otherwise sends zeros and returns what came back.
uint16_t Gpu_Hal_Transfer16(Gpu_Hal_Context_t* host, uint16_t value);
uint32_t Gpu_Hal_Transfer32(Gpu_Hal_Context_t* host, uint32_t value);
// Sends a string and its terminating zero; returns the byte received with the terminator.
uint8_t Gpu_Hal_TransferString(const char* string);
void Gpu_Hal_EndTransfer(Gpu_Hal_Context_t* host);

uint8_t Gpu_Hal_Rd8(Gpu_Hal_Context_t* host, uint32_t addr);
uint16_t Gpu_Hal_Rd16(Gpu_Hal_Context_t* host, uint32_t addr);
uint32_t Gpu_Hal_Rd32(Gpu_Hal_Context_t* host, uint32_t addr);
void Gpu_Hal_Wr8(Gpu_Hal_Context_t* host, uint32_t addr, uint8_t value);
void Gpu_Hal_Wr16(Gpu_Hal_Context_t* host, uint32_t addr, uint16_t value);
void Gpu_Hal_Wr32(Gpu_Hal_Context_t* host, uint32_t addr, uint32_t value);

// A block of memory in one transfer; one is opened and closed for a length of 0 too.
void Gpu_Hal_WrMem(Gpu_Hal_Context_t* host, uint32_t addr, const uint8_t* buffer, uint32_t length);
void Gpu_Hal_RdMem(Gpu_Hal_Context_t* host, uint32_t addr, uint8_t* buffer, uint32_t length);

void Gpu_Hal_Sleep(uint32_t ms);
void Gpu_Hal_ResetDLBuffer(Gpu_Hal_Context_t* host);

// ---- Host commands ----

// Three bytes on the wire: `cmd`, 0, 0.
void Gpu_HostCommand(uint8_t cmd);
// Three bytes on the wire: bits 0..7, 8..15 and 16..23 of `cmd`.
void Gpu_HostCommand_Ext3(uint32_t cmd);

void Gpu_ClockSelect(GPU_PLL_SOURCE_T source);
void Gpu_PLL_FreqSelect(GPU_PLL_FREQ_T frequency);
void Gpu_PowerModeSwitch(GPU_POWER_MODE_T mode);
void Gpu_CoreReset();

// EVE_2 and EVE_3 only: these abort the process under EVE_1.

// Sends nothing for a frequency that the controller does not have.
void Gpu_81X_SelectSysCLK(GPU_81X_PLL_FREQ_T frequency);
// Switches off the parts of the chip whose bits are set in `mask`.
void Gpu_81X_PowerOffComponents(Gpu_Hal_Context_t* host, uint8_t mask);
// Strength and group are or'ed into the same byte of the command.
void Gpu_81X_PadDriveStrength(Gpu_Hal_Context_t* host, GPU_81X_GPIO_DRIVE_STRENGTH_T strength,
                              GPU_81X_GPIO_GROUP_T group);
void Gpu_81X_ResetActive();
void Gpu_81X_ResetRemoval();

// ---- Power and SPI width ----

// Takes the controller through power-down and up again, or, for `up` false, down. Takes 40 ms.
void Gpu_Hal_Powercycle(bool up);

// Sets the controller's SPI width and read dummy bytes and notes both in `host`. The host side of
// this layer stays with one lane and one dummy byte. Returns 0, also under EVE_1, which has no such
// setting and is left alone; -1, with nothing changed, for values that the controller lacks.
int Gpu_Hal_SetSPI(Gpu_Hal_Context_t* host, GPU_SPI_NUMCHANNELS_T channels,
                   GPU_SPI_NUMDUMMYBYTES dummies);

// ---- Command FIFO ----
//
// The coprocessor reads its commands from a 4096-byte ring. At most 4092 bytes may be pending. The
// waits poll the controller without a pause and without a time-out: a coprocessor that has stopped
// at a fault keeps the caller waiting.

// Advances the write offset by `count` bytes, rounded up to a whole word, and tells the controller.
void Gpu_Hal_Updatecmdfifo(Gpu_Hal_Context_t* host, uint32_t count);
// Free bytes, 0..4092.
uint16_t Gpu_Cmdfifo_Freespace(Gpu_Hal_Context_t* host);
// Waits until at least `count` bytes are free.
void Gpu_Hal_CheckCmdBuffer(Gpu_Hal_Context_t* host, uint32_t count);
// Sends one word when there is room for it.
void Gpu_Hal_WrCmd32(Gpu_Hal_Context_t* host, uint32_t word);
// Sends a buffer in pieces that fit the free space, and after each piece waits until the
// coprocessor has consumed everything. A piece is one transfer even where it passes the end of the
// ring: the controller wraps it.
void Gpu_Hal_WrCmdBuf(Gpu_Hal_Context_t* host, const uint8_t* buffer, uint32_t count);
// The same, waiting only for room.
void Gpu_Hal_WrCmdBuf_nowait(Gpu_Hal_Context_t* host, const uint8_t* buffer, uint32_t count);
// Waits until the coprocessor has consumed everything and takes over its write offset.
void Gpu_Hal_WaitCmdfifo_empty(Gpu_Hal_Context_t* host);
// One look at the same: 1 when everything is consumed, else 0.
uint32_t Gpu_Hal_WaitCmdfifo_empty_status(Gpu_Hal_Context_t* host);
// Waits for the end of the controller's built-in logo, which leaves both offsets 0.
void Gpu_Hal_WaitLogo_Finish(Gpu_Hal_Context_t* host);
// Forgets the write offset, on the host only.
void Gpu_Hal_ResetCmdFifo(Gpu_Hal_Context_t* host);

// Swaps display lists and waits, in steps of 1 ms and without a time-out, until it is done. `type`
// is the value of "__DLSWAP_LINE" or, like any other value, "__DLSWAP_FRAME".
void Gpu_Hal_DLSwap(Gpu_Hal_Context_t* host, uint8_t type);

// ---- Other rings in controller memory ----

struct Fifo_t {
    uint32_t base_address;   // of the ring, in controller memory
    uint32_t ring_length;    // bytes
    uint32_t write_offset;   // where the host writes next
    uint32_t read_offset;    // as last fetched from the controller
    uint32_t read_register;  // address of the register with the consumer's read offset
    uint32_t write_register; // address of the register that is told the write offset
};

void Fifo_Init(Fifo_t* fifo, uint32_t start, uint32_t length, uint32_t read_register,
               uint32_t write_register);
// Fetches the read offset.
void Fifo_Update(Gpu_Hal_Context_t* host, Fifo_t* fifo);
// Fetches the read offset and returns the free bytes, keeping back one word when there is more.
uint32_t Fifo_GetFreeSpace(Gpu_Hal_Context_t* host, Fifo_t* fifo);
// Writes as much of `data`, which is only read, as fits and returns how many bytes that was.
uint32_t Fifo_Write(Gpu_Hal_Context_t* host, Fifo_t* fifo, uint8_t* data, uint32_t count);
// Writes all of `data`, waiting without a time-out while the ring is full.
void Fifo_WriteWait(Gpu_Hal_Context_t* host, Fifo_t* fifo, uint8_t* data, uint32_t count);
void Fifo_Write32(Gpu_Hal_Context_t* host, Fifo_t* fifo, uint32_t word);

// ---- Drawing helpers ----

// Appends the decimal text of `value` to the string in `str`, which must have room. Returns 0.
int32_t Gpu_Hal_Dec2Ascii(char* str, int32_t value);

// Puts an empty, black display list in place. Does not wait for the swap.
void Gpu_ClearScreen(Gpu_Hal_Context_t* host);

// Dims the backlight from 100 (of 128) to 1, never off, in 34 steps of 2 ms.
void fadeout(Gpu_Hal_Context_t* host);
// Brightens the backlight from 0 to full, in the same way.
void fadein(Gpu_Hal_Context_t* host);

// Mean of `count` values; NaN for none.
float cal_average(const float* values, uint16_t count);

// Sine and cosine of an angle of 65536 units per turn; 32767 is 1.
int16_t qsin(uint16_t a);
int16_t qcos(uint16_t a);

// The point at `r` pixels and clockwise angle `th` (65536 per turn, 0 is up) from (ox, oy), which
// is in pixels, in 1/16 pixel. x comes out one pixel further to the right.
void polarxy(int r, float th, int* x, int* y, int ox, int oy);
// Appends that point as a vertex to the application command buffer.
void polar(Gpu_Hal_Context_t* host, int r, float th, int ox, int oy);

// An angle relative to `base`, both in degrees, in units of 32768 per turn.
float da(float degrees, int16_t base);
