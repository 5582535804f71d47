#include "commandtable.h"

#include <array>

namespace controller {

namespace {

// Argument counts of the chip's self-test and internal commands (CRC, HAMMERAUX, MARCH, IDCT,
// EXECUTE) are not published; they are taken as none.
constexpr CommandInfo table[] = {
    {"DLSTART", Command::DlStart, everyGeneration, 0},
    {"SWAP", Command::Swap, everyGeneration, 0},
    {"INTERRUPT", Command::Interrupt, everyGeneration, 1},
    {"CRC", Command::Crc, everyGeneration, 0},
    {"HAMMERAUX", Command::HammerAux, everyGeneration, 0},
    {"MARCH", Command::March, everyGeneration, 0},
    {"IDCT", Command::Idct, everyGeneration, 0},
    {"EXECUTE", Command::Execute, everyGeneration, 0},
    {"GETPOINT", Command::GetPoint, everyGeneration, 3},
    {"BGCOLOR", Command::BgColor, everyGeneration, 1},
    {"FGCOLOR", Command::FgColor, everyGeneration, 1},
    {"GRADIENT", Command::Gradient, everyGeneration, 4},
    {"TEXT", Command::Text, everyGeneration, 2, Trailer::Text},
    {"BUTTON", Command::Button, everyGeneration, 3, Trailer::Text},
    {"KEYS", Command::Keys, everyGeneration, 3, Trailer::Text},
    {"PROGRESS", Command::Progress, everyGeneration, 4},
    {"SLIDER", Command::Slider, everyGeneration, 4},
    {"SCROLLBAR", Command::Scrollbar, everyGeneration, 4},
    {"TOGGLE", Command::Toggle, everyGeneration, 3, Trailer::Text},
    {"GAUGE", Command::Gauge, everyGeneration, 4},
    {"CLOCK", Command::Clock, everyGeneration, 4},
    {"CALIBRATE", Command::Calibrate, everyGeneration, 1},
    {"SPINNER", Command::Spinner, everyGeneration, 2},
    {"STOP", Command::Stop, everyGeneration, 0},
    {"MEMCRC", Command::MemCrc, everyGeneration, 3},
    {"REGREAD", Command::RegRead, everyGeneration, 2},
    {"MEMWRITE", Command::MemWrite, everyGeneration, 2, Trailer::Bytes, 1},
    {"MEMSET", Command::MemSet, everyGeneration, 3},
    {"MEMZERO", Command::MemZero, everyGeneration, 2},
    {"MEMCPY", Command::MemCpy, everyGeneration, 3},
    {"APPEND", Command::Append, everyGeneration, 2},
    {"SNAPSHOT", Command::Snapshot, everyGeneration, 1},
    {"TOUCH_TRANSFORM", Command::TouchTransform, everyGeneration, 13},
    {"BITMAP_TRANSFORM", Command::BitmapTransform, everyGeneration, 13},
    {"INFLATE", Command::Inflate, everyGeneration, 1, Trailer::Stream},
    {"GETPTR", Command::GetPtr, everyGeneration, 1},
    {"LOADIMAGE", Command::LoadImage, everyGeneration, 2, Trailer::Stream},
    {"GETPROPS", Command::GetProps, everyGeneration, 3},
    {"LOADIDENTITY", Command::LoadIdentity, everyGeneration, 0},
    {"TRANSLATE", Command::Translate, everyGeneration, 2},
    {"SCALE", Command::Scale, everyGeneration, 2},
    {"ROTATE", Command::Rotate, everyGeneration, 1},
    {"SETMATRIX", Command::SetMatrix, everyGeneration, 0},
    {"SETFONT", Command::SetFont, everyGeneration, 2},
    {"TRACK", Command::Track, everyGeneration, 3},
    {"DIAL", Command::Dial, everyGeneration, 3},
    {"NUMBER", Command::Number, everyGeneration, 3},
    {"SCREENSAVER", Command::ScreenSaver, everyGeneration, 0},
    {"SKETCH", Command::Sketch, everyGeneration, 4},
    {"LOGO", Command::Logo, everyGeneration, 0},
    {"COLDSTART", Command::ColdStart, everyGeneration, 0},
    {"GETMATRIX", Command::GetMatrix, everyGeneration, 6},
    {"GRADCOLOR", Command::GradColor, everyGeneration, 1},
    {"CSKETCH", Command::CSketch, everyGeneration, 4},
    {"SETROTATE", Command::SetRotate, e2AndE3, 1},
    {"SNAPSHOT2", Command::Snapshot2, e2AndE3, 4},
    {"SETBASE", Command::SetBase, e2AndE3, 1},
    {"MEDIAFIFO", Command::MediaFifo, e2AndE3, 2},
    {"PLAYVIDEO", Command::PlayVideo, e2AndE3, 1, Trailer::Stream},
    {"SETFONT2", Command::SetFont2, e2AndE3, 3},
    {"SETSCRATCH", Command::SetScratch, e2AndE3, 1},
    {"INT_RAMSHARED", Command::IntRamShared, e2AndE3, 1},
    {"INT_SWLOADIMAGE", Command::IntSwLoadImage, e2AndE3, 2},
    {"ROMFONT", Command::RomFont, e2AndE3, 2},
    {"VIDEOSTART", Command::VideoStart, e2AndE3, 0},
    {"VIDEOFRAME", Command::VideoFrame, e2AndE3, 2},
    {"SYNC", Command::Sync, e2AndE3, 0},
    {"SETBITMAP", Command::SetBitmap, e2AndE3, 3},
    {"FLASHERASE", Command::FlashErase, e3Only, 0},
    {"FLASHWRITE", Command::FlashWrite, e3Only, 2, Trailer::Bytes, 1},
    {"FLASHREAD", Command::FlashRead, e3Only, 3},
    {"FLASHUPDATE", Command::FlashUpdate, e3Only, 3},
    {"FLASHDETACH", Command::FlashDetach, e3Only, 0},
    {"FLASHATTACH", Command::FlashAttach, e3Only, 0},
    {"FLASHFAST", Command::FlashFast, e3Only, 1},
    {"FLASHSPIDESEL", Command::FlashSpiDesel, e3Only, 0},
    {"FLASHSPITX", Command::FlashSpiTx, e3Only, 1, Trailer::Bytes, 0},
    {"FLASHSPIRX", Command::FlashSpiRx, e3Only, 2},
    {"FLASHSOURCE", Command::FlashSource, e3Only, 1},
    {"CLEARCACHE", Command::ClearCache, e3Only, 0},
    {"INFLATE2", Command::Inflate2, e3Only, 2, Trailer::Stream},
    {"ROTATEAROUND", Command::RotateAround, e3Only, 4},
    {"RESETFONTS", Command::ResetFonts, e3Only, 0},
    {"ANIMSTART", Command::AnimStart, e3Only, 3},
    {"ANIMSTOP", Command::AnimStop, e3Only, 1},
    {"ANIMXY", Command::AnimXy, e3Only, 2},
    {"ANIMDRAW", Command::AnimDraw, e3Only, 1},
    {"GRADIENTA", Command::GradientA, e3Only, 4},
    {"FILLWIDTH", Command::FillWidth, e3Only, 1},
    {"APPENDF", Command::AppendF, e3Only, 2},
    {"ANIMFRAME", Command::AnimFrame, e3Only, 3},
    {"NOP", Command::Nop, e3Only, 0},
    {"SHA1", Command::Sha1, e3Only, 3},
    {"HMAC", Command::Hmac, e3Only, 3},
    {"VIDEOSTARTF", Command::VideoStartF, e3Only, 0},
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
