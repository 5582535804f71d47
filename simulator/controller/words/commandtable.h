#pragma once

#include "generationset.h"

#include <cstddef>
#include <cstdint>

namespace controller {

// A coprocessor command is the word 0xFFFFFF00 + its code, then its arguments.
enum class Command : std::uint8_t {
    DlStart = 0x00,
    Swap = 0x01,
    Interrupt = 0x02,
    Crc = 0x03,
    HammerAux = 0x04,
    March = 0x05,
    Idct = 0x06,
    Execute = 0x07,
    GetPoint = 0x08,
    BgColor = 0x09,
    FgColor = 0x0A,
    Gradient = 0x0B,
    Text = 0x0C,
    Button = 0x0D,
    Keys = 0x0E,
    Progress = 0x0F,
    Slider = 0x10,
    Scrollbar = 0x11,
    Toggle = 0x12,
    Gauge = 0x13,
    Clock = 0x14,
    Calibrate = 0x15,
    Spinner = 0x16,
    Stop = 0x17,
    MemCrc = 0x18,
    RegRead = 0x19,
    MemWrite = 0x1A,
    MemSet = 0x1B,
    MemZero = 0x1C,
    MemCpy = 0x1D,
    Append = 0x1E,
    Snapshot = 0x1F,
    TouchTransform = 0x20,
    BitmapTransform = 0x21,
    Inflate = 0x22,
    GetPtr = 0x23,
    LoadImage = 0x24,
    GetProps = 0x25,
    LoadIdentity = 0x26,
    Translate = 0x27,
    Scale = 0x28,
    Rotate = 0x29,
    SetMatrix = 0x2A,
    SetFont = 0x2B,
    Track = 0x2C,
    Dial = 0x2D,
    Number = 0x2E,
    ScreenSaver = 0x2F,
    Sketch = 0x30,
    Logo = 0x31,
    ColdStart = 0x32,
    GetMatrix = 0x33,
    GradColor = 0x34,
    CSketch = 0x35,
    SetRotate = 0x36,
    Snapshot2 = 0x37,
    SetBase = 0x38,
    MediaFifo = 0x39,
    PlayVideo = 0x3A,
    SetFont2 = 0x3B,
    SetScratch = 0x3C,
    IntRamShared = 0x3D,
    IntSwLoadImage = 0x3E,
    RomFont = 0x3F,
    VideoStart = 0x40,
    VideoFrame = 0x41,
    Sync = 0x42,
    SetBitmap = 0x43,
    FlashErase = 0x44,
    FlashWrite = 0x45,
    FlashRead = 0x46,
    FlashUpdate = 0x47,
    FlashDetach = 0x48,
    FlashAttach = 0x49,
    FlashFast = 0x4A,
    FlashSpiDesel = 0x4B,
    FlashSpiTx = 0x4C,
    FlashSpiRx = 0x4D,
    FlashSource = 0x4E,
    ClearCache = 0x4F,
    Inflate2 = 0x50,
    RotateAround = 0x51,
    ResetFonts = 0x52,
    AnimStart = 0x53,
    AnimStop = 0x54,
    AnimXy = 0x55,
    AnimDraw = 0x56,
    GradientA = 0x57,
    FillWidth = 0x58,
    AppendF = 0x59,
    AnimFrame = 0x5A,
    Nop = 0x5B,
    Sha1 = 0x5C,
    Hmac = 0x5D,
    VideoStartF = 0x5F,
};

// What follows a command's fixed argument words.
enum class Trailer : std::uint8_t {
    None,
    Text,   // a zero-terminated string, padded to whole words
    Bytes,  // as many bytes as the argument word at `lengthWord` says, padded to whole words
    Stream, // data that carries its own end (zlib, image, video), padded to whole words
};

struct CommandInfo {
    const char* name; // without prefix: "TEXT"
    Command command;
    GenerationSet generations; // where it exists
    std::uint8_t words;        // fixed argument words, result placeholders included
    Trailer trailer = Trailer::None;
    std::uint8_t lengthWord = 0; // for Trailer::Bytes: the argument word that holds the length
};

// The command that `word` is in this generation; null when it is none.
const CommandInfo* commandInfo(Generation generation, std::uint32_t word);

} // namespace controller
