#include "commandtable.h"

#include <array>

namespace controller {

namespace {

// Argument counts of the chip's self-test and internal commands (CRC, HAMMERAUX, MARCH, IDCT,
// EXECUTE) are not published; they are taken as none.
constexpr CommandInfo table[] = {
    {Command::DlStart, "DLSTART", everyGeneration, 0},
    {Command::Swap, "SWAP", everyGeneration, 0},
    {Command::Interrupt, "INTERRUPT", everyGeneration, 1},
    {Command::Crc, "CRC", everyGeneration, 0},
    {Command::HammerAux, "HAMMERAUX", everyGeneration, 0},
    {Command::March, "MARCH", everyGeneration, 0},
    {Command::Idct, "IDCT", everyGeneration, 0},
    {Command::Execute, "EXECUTE", everyGeneration, 0},
    {Command::GetPoint, "GETPOINT", everyGeneration, 3},
    {Command::BgColor, "BGCOLOR", everyGeneration, 1},
    {Command::FgColor, "FGCOLOR", everyGeneration, 1},
    {Command::Gradient, "GRADIENT", everyGeneration, 4},
    {Command::Text, "TEXT", everyGeneration, 2, Trailer::Text},
    {Command::Button, "BUTTON", everyGeneration, 3, Trailer::Text},
    {Command::Keys, "KEYS", everyGeneration, 3, Trailer::Text},
    {Command::Progress, "PROGRESS", everyGeneration, 4},
    {Command::Slider, "SLIDER", everyGeneration, 4},
    {Command::Scrollbar, "SCROLLBAR", everyGeneration, 4},
    {Command::Toggle, "TOGGLE", everyGeneration, 3, Trailer::Text},
    {Command::Gauge, "GAUGE", everyGeneration, 4},
    {Command::Clock, "CLOCK", everyGeneration, 4},
    {Command::Calibrate, "CALIBRATE", everyGeneration, 1},
    {Command::Spinner, "SPINNER", everyGeneration, 2},
    {Command::Stop, "STOP", everyGeneration, 0},
    {Command::MemCrc, "MEMCRC", everyGeneration, 3},
    {Command::RegRead, "REGREAD", everyGeneration, 2},
    {Command::MemWrite, "MEMWRITE", everyGeneration, 2, Trailer::Bytes, 1},
    {Command::MemSet, "MEMSET", everyGeneration, 3},
    {Command::MemZero, "MEMZERO", everyGeneration, 2},
    {Command::MemCpy, "MEMCPY", everyGeneration, 3},
    {Command::Append, "APPEND", everyGeneration, 2},
    {Command::Snapshot, "SNAPSHOT", everyGeneration, 1},
    {Command::TouchTransform, "TOUCH_TRANSFORM", everyGeneration, 13},
    {Command::BitmapTransform, "BITMAP_TRANSFORM", everyGeneration, 13},
    {Command::Inflate, "INFLATE", everyGeneration, 1, Trailer::Stream},
    {Command::GetPtr, "GETPTR", everyGeneration, 1},
    {Command::LoadImage, "LOADIMAGE", everyGeneration, 2, Trailer::Stream},
    {Command::GetProps, "GETPROPS", everyGeneration, 3},
    {Command::LoadIdentity, "LOADIDENTITY", everyGeneration, 0},
    {Command::Translate, "TRANSLATE", everyGeneration, 2},
    {Command::Scale, "SCALE", everyGeneration, 2},
    {Command::Rotate, "ROTATE", everyGeneration, 1},
    {Command::SetMatrix, "SETMATRIX", everyGeneration, 0},
    {Command::SetFont, "SETFONT", everyGeneration, 2},
    {Command::Track, "TRACK", everyGeneration, 3},
    {Command::Dial, "DIAL", everyGeneration, 3},
    {Command::Number, "NUMBER", everyGeneration, 3},
    {Command::ScreenSaver, "SCREENSAVER", everyGeneration, 0},
    {Command::Sketch, "SKETCH", everyGeneration, 4},
    {Command::Logo, "LOGO", everyGeneration, 0},
    {Command::ColdStart, "COLDSTART", everyGeneration, 0},
    {Command::GetMatrix, "GETMATRIX", everyGeneration, 6},
    {Command::GradColor, "GRADCOLOR", everyGeneration, 1},
    {Command::CSketch, "CSKETCH", everyGeneration, 4},
    {Command::SetRotate, "SETROTATE", e2AndE3, 1},
    {Command::Snapshot2, "SNAPSHOT2", e2AndE3, 4},
    {Command::SetBase, "SETBASE", e2AndE3, 1},
    {Command::MediaFifo, "MEDIAFIFO", e2AndE3, 2},
    {Command::PlayVideo, "PLAYVIDEO", e2AndE3, 1, Trailer::Stream},
    {Command::SetFont2, "SETFONT2", e2AndE3, 3},
    {Command::SetScratch, "SETSCRATCH", e2AndE3, 1},
    {Command::IntRamShared, "INT_RAMSHARED", e2AndE3, 1},
    {Command::IntSwLoadImage, "INT_SWLOADIMAGE", e2AndE3, 2},
    {Command::RomFont, "ROMFONT", e2AndE3, 2},
    {Command::VideoStart, "VIDEOSTART", e2AndE3, 0},
    {Command::VideoFrame, "VIDEOFRAME", e2AndE3, 2},
    {Command::Sync, "SYNC", e2AndE3, 0},
    {Command::SetBitmap, "SETBITMAP", e2AndE3, 3},
    {Command::FlashErase, "FLASHERASE", e3Only, 0},
    {Command::FlashWrite, "FLASHWRITE", e3Only, 2, Trailer::Bytes, 1},
    {Command::FlashRead, "FLASHREAD", e3Only, 3},
    {Command::FlashUpdate, "FLASHUPDATE", e3Only, 3},
    {Command::FlashDetach, "FLASHDETACH", e3Only, 0},
    {Command::FlashAttach, "FLASHATTACH", e3Only, 0},
    {Command::FlashFast, "FLASHFAST", e3Only, 1},
    {Command::FlashSpiDesel, "FLASHSPIDESEL", e3Only, 0},
    {Command::FlashSpiTx, "FLASHSPITX", e3Only, 1, Trailer::Bytes, 0},
    {Command::FlashSpiRx, "FLASHSPIRX", e3Only, 2},
    {Command::FlashSource, "FLASHSOURCE", e3Only, 1},
    {Command::ClearCache, "CLEARCACHE", e3Only, 0},
    {Command::Inflate2, "INFLATE2", e3Only, 2, Trailer::Stream},
    {Command::RotateAround, "ROTATEAROUND", e3Only, 4},
    {Command::ResetFonts, "RESETFONTS", e3Only, 0},
    {Command::AnimStart, "ANIMSTART", e3Only, 3},
    {Command::AnimStop, "ANIMSTOP", e3Only, 1},
    {Command::AnimXy, "ANIMXY", e3Only, 2},
    {Command::AnimDraw, "ANIMDRAW", e3Only, 1},
    {Command::GradientA, "GRADIENTA", e3Only, 4},
    {Command::FillWidth, "FILLWIDTH", e3Only, 1},
    {Command::AppendF, "APPENDF", e3Only, 2},
    {Command::AnimFrame, "ANIMFRAME", e3Only, 3},
    {Command::Nop, "NOP", e3Only, 0},
    {Command::Sha1, "SHA1", e3Only, 3},
    {Command::Hmac, "HMAC", e3Only, 3},
    {Command::VideoStartF, "VIDEOSTARTF", e3Only, 0},
};

using Index = std::array<const CommandInfo*, 256>;

Index makeIndex() {
    Index index{};
    for (const CommandInfo& info : table) {
        index[static_cast<std::uint8_t>(info.command)] = &info;
    }
    return index;
}

} // namespace

const CommandInfo* commandInfo(Generation generation, std::uint32_t word) {
    static const Index index = makeIndex();
    if ((word & 0xFFFFFF00U) != 0xFFFFFF00U) {
        return nullptr;
    }
    const CommandInfo* info = index[word & 0xFFU];
    return info && contains(info->generations, generation) ? info : nullptr;
}

} // namespace controller
