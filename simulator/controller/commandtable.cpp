#include "commandtable.h"

#include <array>

namespace controller {

namespace {

// Argument counts of the chip's self-test and internal commands (CRC, HAMMERAUX, MARCH, IDCT,
// EXECUTE) are not published; they are taken as none.
constexpr CommandInfo table[] = {
    {Command::DlStart, "DLSTART", all, 0},
    {Command::Swap, "SWAP", all, 0},
    {Command::Interrupt, "INTERRUPT", all, 1},
    {Command::Crc, "CRC", all, 0},
    {Command::HammerAux, "HAMMERAUX", all, 0},
    {Command::March, "MARCH", all, 0},
    {Command::Idct, "IDCT", all, 0},
    {Command::Execute, "EXECUTE", all, 0},
    {Command::GetPoint, "GETPOINT", all, 3},
    {Command::BgColor, "BGCOLOR", all, 1},
    {Command::FgColor, "FGCOLOR", all, 1},
    {Command::Gradient, "GRADIENT", all, 4},
    {Command::Text, "TEXT", all, 2, Trailer::Text},
    {Command::Button, "BUTTON", all, 3, Trailer::Text},
    {Command::Keys, "KEYS", all, 3, Trailer::Text},
    {Command::Progress, "PROGRESS", all, 4},
    {Command::Slider, "SLIDER", all, 4},
    {Command::Scrollbar, "SCROLLBAR", all, 4},
    {Command::Toggle, "TOGGLE", all, 3, Trailer::Text},
    {Command::Gauge, "GAUGE", all, 4},
    {Command::Clock, "CLOCK", all, 4},
    {Command::Calibrate, "CALIBRATE", all, 1},
    {Command::Spinner, "SPINNER", all, 2},
    {Command::Stop, "STOP", all, 0},
    {Command::MemCrc, "MEMCRC", all, 3},
    {Command::RegRead, "REGREAD", all, 2},
    {Command::MemWrite, "MEMWRITE", all, 2, Trailer::Bytes, 1},
    {Command::MemSet, "MEMSET", all, 3},
    {Command::MemZero, "MEMZERO", all, 2},
    {Command::MemCpy, "MEMCPY", all, 3},
    {Command::Append, "APPEND", all, 2},
    {Command::Snapshot, "SNAPSHOT", all, 1},
    {Command::TouchTransform, "TOUCH_TRANSFORM", all, 13},
    {Command::BitmapTransform, "BITMAP_TRANSFORM", all, 13},
    {Command::Inflate, "INFLATE", all, 1, Trailer::Stream},
    {Command::GetPtr, "GETPTR", all, 1},
    {Command::LoadImage, "LOADIMAGE", all, 2, Trailer::Stream},
    {Command::GetProps, "GETPROPS", all, 3},
    {Command::LoadIdentity, "LOADIDENTITY", all, 0},
    {Command::Translate, "TRANSLATE", all, 2},
    {Command::Scale, "SCALE", all, 2},
    {Command::Rotate, "ROTATE", all, 1},
    {Command::SetMatrix, "SETMATRIX", all, 0},
    {Command::SetFont, "SETFONT", all, 2},
    {Command::Track, "TRACK", all, 3},
    {Command::Dial, "DIAL", all, 3},
    {Command::Number, "NUMBER", all, 3},
    {Command::ScreenSaver, "SCREENSAVER", all, 0},
    {Command::Sketch, "SKETCH", all, 4},
    {Command::Logo, "LOGO", all, 0},
    {Command::ColdStart, "COLDSTART", all, 0},
    {Command::GetMatrix, "GETMATRIX", all, 6},
    {Command::GradColor, "GRADCOLOR", all, 1},
    {Command::CSketch, "CSKETCH", all, 4},
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
