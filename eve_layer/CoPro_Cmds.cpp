#include "CoPro_Cmds.h"

#include "App_Common.h"
#include "Gpu_Hal.h"
#include "displaysettings.h"
#include "generationguard.h"
#include "word.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <initializer_list>

namespace {

constexpr const char* coProCmdsFile = "eve_layer/CoPro_Cmds.cpp";

// Two 16-bit arguments in one word.
constexpr uint32_t halves(int low, int high) {
    return (static_cast<uint32_t>(low) & 0xFFFFU) | (static_cast<uint32_t>(high) << 16);
}

// A whole command: its code and its argument words, in order.
template<typename... Words>
void sendCommand(Gpu_Hal_Context_t* host, uint32_t code, Words... words) {
    constexpr auto bytes = static_cast<uint16_t>(4 * (1 + sizeof...(words)));
    Gpu_CoCmd_StartFunc(host, bytes);
    Gpu_Copro_SendCmd(host, code);
    (Gpu_Copro_SendCmd(host, static_cast<uint32_t>(words)), ...);
    Gpu_CoCmd_EndFunc(host, bytes);
}

} // namespace

void Gpu_Copro_SendCmd(Gpu_Hal_Context_t* host, uint32_t word) {
    App_WrCoCmd_Buffer(host, word);
}

void Gpu_CoCmd_SendStr(Gpu_Hal_Context_t* host, const char* s) {
    App_WrCoStr_Buffer(host, s);
}

void Gpu_CoCmd_StartFunc(Gpu_Hal_Context_t* /*host*/, uint16_t /*bytes*/) {}

void Gpu_CoCmd_EndFunc(Gpu_Hal_Context_t* /*host*/, uint16_t /*bytes*/) {}

// --- text, and widgets with a label

namespace {

// The values that follow a command's text.
uint8_t formatValues(uint16_t options, const char* s) {
    const bool formats = isEve3() && (options & EVE_REG("__OPT_FORMAT")) != 0;
    return formats ? COUNT_ARGS(s) : uint8_t{0};
}

std::size_t sizeWithTerminator(const char* s) {
    return std::strlen(s) + 1;
}

// A command that ends in a text: its code and argument words, the text, then `count` words out of
// `values`. textBytes: what the hooks are told about the text's length.
void sendTextCommand(Gpu_Hal_Context_t* host, std::initializer_list<uint32_t> words, const char* s,
                     std::size_t textBytes, uint8_t count = 0, std::va_list* values = nullptr) {
    const auto bytes = static_cast<uint16_t>(4 * (words.size() + count) + textBytes);
    Gpu_CoCmd_StartFunc(host, bytes);
    for (const uint32_t word : words) {
        Gpu_Copro_SendCmd(host, word);
    }
    Gpu_CoCmd_SendStr(host, s);
    for (int i = 0; i < count; ++i) {
        Gpu_Copro_SendCmd(host, va_arg(*values, uint32_t));
    }
    Gpu_CoCmd_EndFunc(host, bytes);
}

} // namespace

uint8_t COUNT_ARGS(const char* s) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    uint8_t count = 0;
    const char* percent = std::strchr(s, '%');
    while (percent != nullptr) {
        const bool doubled = percent[1] == '%';
        count = static_cast<uint8_t>(count + (doubled ? 0 : 1));
        percent = std::strchr(percent + (doubled ? 2 : 1), '%');
    }
    return count;
}

void Gpu_CoCmd_Text(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t font, uint16_t options,
                    const char* s, ...) {
    const std::size_t wholeWords = (std::strlen(s) + 3) / 4 * 4;
    std::va_list values;
    va_start(values, s);
    sendTextCommand(host, {EVE_REG("__CMD_TEXT"), halves(x, y), halves(font, options)}, s,
                    wholeWords, formatValues(options, s), &values);
    va_end(values);
}

void Gpu_CoCmd_Button(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                      int16_t font, uint16_t options, const char* s, ...) {
    std::va_list values;
    va_start(values, s);
    sendTextCommand(host,
                    {EVE_REG("__CMD_BUTTON"), halves(x, y), halves(w, h), halves(font, options)}, s,
                    sizeWithTerminator(s), formatValues(options, s), &values);
    va_end(values);
}

void Gpu_CoCmd_Toggle(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t font,
                      uint16_t options, uint16_t state, const char* s, ...) {
    std::va_list values;
    va_start(values, s);
    sendTextCommand(
        host, {EVE_REG("__CMD_TOGGLE"), halves(x, y), halves(w, font), halves(options, state)}, s,
        sizeWithTerminator(s), formatValues(options, s), &values);
    va_end(values);
}

void Gpu_CoCmd_Keys(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                    int16_t font, uint16_t options, const char* s) {
    sendTextCommand(host,
                    {EVE_REG("__CMD_KEYS"), halves(x, y), halves(w, h), halves(font, options)}, s,
                    sizeWithTerminator(s));
}

// --- all other commands, in the order of the header

void Gpu_CoCmd_Dlstart(Gpu_Hal_Context_t* host) {
    sendCommand(host, EVE_REG("__CMD_DLSTART"));
}

void Gpu_CoCmd_Swap(Gpu_Hal_Context_t* host) {
    sendCommand(host, EVE_REG("__CMD_SWAP"));
}

void Gpu_CoCmd_ColdStart(Gpu_Hal_Context_t* host) {
    sendCommand(host, EVE_REG("__CMD_COLDSTART"));
}

void Gpu_CoCmd_Interrupt(Gpu_Hal_Context_t* host, uint32_t ms) {
    sendCommand(host, EVE_REG("__CMD_INTERRUPT"), ms);
}

void Gpu_CoCmd_Append(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num) {
    sendCommand(host, EVE_REG("__CMD_APPEND"), ptr, num);
}

void Gpu_CoCmd_RegRead(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t /*result*/) {
    sendCommand(host, EVE_REG("__CMD_REGREAD"), ptr, 0);
}

void Gpu_CoCmd_BgColor(Gpu_Hal_Context_t* host, uint32_t rgb) {
    sendCommand(host, EVE_REG("__CMD_BGCOLOR"), rgb);
}

void Gpu_CoCmd_FgColor(Gpu_Hal_Context_t* host, uint32_t rgb) {
    sendCommand(host, EVE_REG("__CMD_FGCOLOR"), rgb);
}

void Gpu_CoCmd_GradColor(Gpu_Hal_Context_t* host, uint32_t rgb) {
    sendCommand(host, EVE_REG("__CMD_GRADCOLOR"), rgb);
}

void Gpu_CoCmd_Sync(Gpu_Hal_Context_t* host) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_SYNC"));
}

void Gpu_CoCmd_SetRotate(Gpu_Hal_Context_t* host, uint32_t r) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_SETROTATE"), r);
}

void Gpu_CoCmd_SetScratch(Gpu_Hal_Context_t* host, uint32_t handle) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_SETSCRATCH"), handle);
}

void Gpu_CoCmd_Int_RAMShared(Gpu_Hal_Context_t* host, uint32_t ptr) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_INT_RAMSHARED"), ptr);
}

void Gpu_CoCmd_Int_SWLoadImage(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t options) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_INT_SWLOADIMAGE"), ptr, options);
}

void Gpu_CoCmd_Nop(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_NOP"));
}

void Gpu_CoCmd_AppendF(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_APPENDF"), ptr, num);
}

void Gpu_CoCmd_Int_RamShared(Gpu_Hal_Context_t* host, uint32_t ptr) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_INT_RAMSHARED"), ptr);
}

void Gpu_CoCmd_Number(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t font, uint16_t options,
                      uint32_t n) {
    sendCommand(host, EVE_REG("__CMD_NUMBER"), halves(x, y), halves(font, options), n);
}

void Gpu_CoCmd_SetBase(Gpu_Hal_Context_t* host, uint32_t base) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_SETBASE"), base);
}

void Gpu_CoCmd_FillWidth(Gpu_Hal_Context_t* host, uint32_t s) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FILLWIDTH"), s);
}

void Gpu_CoCmd_SetFont(Gpu_Hal_Context_t* host, uint32_t font, uint32_t ptr) {
    sendCommand(host, EVE_REG("__CMD_SETFONT"), font, ptr);
}

void Gpu_CoCmd_SetFont2(Gpu_Hal_Context_t* host, uint32_t font, uint32_t ptr, uint32_t firstchar) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_SETFONT2"), font, ptr, firstchar);
}

void Gpu_CoCmd_RomFont(Gpu_Hal_Context_t* host, uint32_t font, uint32_t romslot) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_ROMFONT"), font, romslot);
}

void Gpu_CoCmd_ResetFonts(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_RESETFONTS"));
}

void Gpu_CoCmd_Gauge(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t r, uint16_t options,
                     uint16_t major, uint16_t minor, uint16_t val, uint16_t range) {
    sendCommand(host, EVE_REG("__CMD_GAUGE"), halves(x, y), halves(r, options),
                halves(major, minor), halves(val, range));
}

void Gpu_CoCmd_Clock(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t r, uint16_t options,
                     uint16_t h, uint16_t m, uint16_t s, uint16_t ms) {
    sendCommand(host, EVE_REG("__CMD_CLOCK"), halves(x, y), halves(r, options), halves(h, m),
                halves(s, ms));
}

void Gpu_CoCmd_Dial(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t r, uint16_t options,
                    uint32_t val) {
    sendCommand(host, EVE_REG("__CMD_DIAL"), halves(x, y), halves(r, options), val);
}

void Gpu_CoCmd_Slider(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                      uint16_t options, uint16_t val, uint32_t range) {
    sendCommand(host, EVE_REG("__CMD_SLIDER"), halves(x, y), halves(w, h), halves(options, val),
                range);
}

void Gpu_CoCmd_Progress(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                        uint16_t options, uint16_t val, uint32_t range) {
    sendCommand(host, EVE_REG("__CMD_PROGRESS"), halves(x, y), halves(w, h), halves(options, val),
                range);
}

void Gpu_CoCmd_Scrollbar(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                         uint16_t options, uint16_t val, uint16_t size, uint16_t range) {
    sendCommand(host, EVE_REG("__CMD_SCROLLBAR"), halves(x, y), halves(w, h), halves(options, val),
                halves(size, range));
}

void Gpu_CoCmd_Gradient(Gpu_Hal_Context_t* host, int16_t x0, int16_t y0, uint32_t rgb0, int16_t x1,
                        int16_t y1, uint32_t rgb1) {
    sendCommand(host, EVE_REG("__CMD_GRADIENT"), halves(x0, y0), rgb0, halves(x1, y1), rgb1);
}

void Gpu_CoCmd_GradientA(Gpu_Hal_Context_t* host, int16_t x0, int16_t y0, uint32_t argb0,
                         int16_t x1, int16_t y1, uint32_t argb1) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_GRADIENTA"), halves(x0, y0), argb0, halves(x1, y1), argb1);
}

void Gpu_CoCmd_Spinner(Gpu_Hal_Context_t* host, int16_t x, int16_t y, uint16_t style,
                       uint16_t scale) {
    sendCommand(host, EVE_REG("__CMD_SPINNER"), halves(x, y), halves(style, scale));
}

void Gpu_CoCmd_ScreenSaver(Gpu_Hal_Context_t* host) {
    sendCommand(host, EVE_REG("__CMD_SCREENSAVER"));
}

void Gpu_CoCmd_Sketch(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                      uint32_t ptr, uint32_t format) {
    sendCommand(host, EVE_REG("__CMD_SKETCH"), halves(x, y), halves(w, h), ptr, format);
}

void Gpu_CoCmd_Stop(Gpu_Hal_Context_t* host) {
    sendCommand(host, EVE_REG("__CMD_STOP"));
}

void Gpu_CoCmd_Logo(Gpu_Hal_Context_t* host) {
    sendCommand(host, EVE_REG("__CMD_LOGO"));
}

void Gpu_CoCmd_AnimStart(Gpu_Hal_Context_t* host, uint32_t ch, uint32_t aoptr, uint32_t loop) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_ANIMSTART"), ch, aoptr, loop);
}

void Gpu_CoCmd_AnimStop(Gpu_Hal_Context_t* host, uint32_t ch) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_ANIMSTOP"), ch);
}

void Gpu_CoCmd_AnimXY(Gpu_Hal_Context_t* host, uint32_t ch, int16_t x, int16_t y) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_ANIMXY"), ch, halves(x, y));
}

void Gpu_CoCmd_AnimDraw(Gpu_Hal_Context_t* host, uint32_t ch) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_ANIMDRAW"), ch);
}

void Gpu_CoCmd_AnimFrame(Gpu_Hal_Context_t* host, int16_t x, int16_t y, uint32_t aoptr,
                         uint32_t frame) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_ANIMFRAME"), halves(x, y), aoptr, frame);
}

void Gpu_CoCmd_Calibrate(Gpu_Hal_Context_t* host, uint32_t result) {
    sendCommand(host, EVE_REG("__CMD_CALIBRATE"), result);
}

void Gpu_CoCmd_Track(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int16_t w, int16_t h,
                     uint32_t tag) {
    sendCommand(host, EVE_REG("__CMD_TRACK"), halves(x, y), halves(w, h), tag);
}

void Gpu_CoCmd_TouchTransform(Gpu_Hal_Context_t* host, int32_t x0, int32_t y0, int32_t x1,
                              int32_t y1, int32_t x2, int32_t y2, int32_t tx0, int32_t ty0,
                              int32_t tx1, int32_t ty1, int32_t tx2, int32_t ty2, uint32_t result) {
    sendCommand(host, EVE_REG("__CMD_TOUCH_TRANSFORM"), x0, y0, x1, y1, x2, y2, tx0, ty0, tx1, ty1,
                tx2, ty2, result);
}

void Gpu_CoCmd_GetPoint(Gpu_Hal_Context_t* host, int16_t x, int16_t y, int32_t sx, int32_t sy) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_GETPOINT"), halves(x, y), sx, sy);
}

void Gpu_CoCmd_LoadIdentity(Gpu_Hal_Context_t* host) {
    sendCommand(host, EVE_REG("__CMD_LOADIDENTITY"));
}

void Gpu_CoCmd_Translate(Gpu_Hal_Context_t* host, int32_t tx, int32_t ty) {
    sendCommand(host, EVE_REG("__CMD_TRANSLATE"), tx, ty);
}

void Gpu_CoCmd_Scale(Gpu_Hal_Context_t* host, int32_t sx, int32_t sy) {
    sendCommand(host, EVE_REG("__CMD_SCALE"), sx, sy);
}

void Gpu_CoCmd_Rotate(Gpu_Hal_Context_t* host, int32_t angle) {
    sendCommand(host, EVE_REG("__CMD_ROTATE"), angle);
}

void Gpu_CoCmd_SetMatrix(Gpu_Hal_Context_t* host) {
    sendCommand(host, EVE_REG("__CMD_SETMATRIX"));
}

void Gpu_CoCmd_GetMatrix(Gpu_Hal_Context_t* host, uint32_t a, uint32_t b, uint32_t c, uint32_t d,
                         uint32_t e, uint32_t f) {
    sendCommand(host, EVE_REG("__CMD_GETMATRIX"), a, b, c, d, e, f);
}

void Gpu_CoCmd_BitmapTransform(Gpu_Hal_Context_t* host, int32_t x0, int32_t y0, int32_t x1,
                               int32_t y1, int32_t x2, int32_t y2, int32_t tx0, int32_t ty0,
                               int32_t tx1, int32_t ty1, int32_t tx2, int32_t ty2,
                               uint32_t result) {
    sendCommand(host, EVE_REG("__CMD_BITMAP_TRANSFORM"), x0, y0, x1, y1, x2, y2, tx0, ty0, tx1, ty1,
                tx2, ty2, result);
}

void Gpu_CoCmd_RotateAround(Gpu_Hal_Context_t* host, int32_t x, int32_t y, int32_t a, int32_t s) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_ROTATEAROUND"), x, y, a, s);
}

void Gpu_CoCmd_SetBitmap(Gpu_Hal_Context_t* host, uint32_t addr, uint16_t fmt, int16_t w,
                         uint32_t h) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_SETBITMAP"), addr, halves(fmt, w), h);
}

void Gpu_CoCmd_Snapshot(Gpu_Hal_Context_t* host, uint32_t ptr) {
    sendCommand(host, EVE_REG("__CMD_SNAPSHOT"), ptr);
}

void Gpu_CoCmd_Snapshot2(Gpu_Hal_Context_t* host, uint32_t fmt, uint32_t ptr, int16_t x, int16_t y,
                         int16_t w, int16_t h) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_SNAPSHOT2"), fmt, ptr, halves(x, y), halves(w, h));
}

void Gpu_CoCmd_Inflate(Gpu_Hal_Context_t* host, uint32_t ptr) {
    sendCommand(host, EVE_REG("__CMD_INFLATE"), ptr);
}

void Gpu_CoCmd_LoadImage(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t options) {
    sendCommand(host, EVE_REG("__CMD_LOADIMAGE"), ptr, options);
}

void Gpu_CoCmd_GetPtr(Gpu_Hal_Context_t* host, uint32_t result) {
    sendCommand(host, EVE_REG("__CMD_GETPTR"), result);
}

void Gpu_CoCmd_GetProps(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t w, uint32_t h) {
    sendCommand(host, EVE_REG("__CMD_GETPROPS"), ptr, w, h);
}

void Gpu_CoCmd_MemWrite(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num) {
    sendCommand(host, EVE_REG("__CMD_MEMWRITE"), ptr, num);
}

void Gpu_CoCmd_Memcpy(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src, uint32_t num) {
    sendCommand(host, EVE_REG("__CMD_MEMCPY"), dest, src, num);
}

void Gpu_CoCmd_MemSet(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t value, uint32_t num) {
    sendCommand(host, EVE_REG("__CMD_MEMSET"), ptr, value, num);
}

void Gpu_CoCmd_MemZero(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num) {
    sendCommand(host, EVE_REG("__CMD_MEMZERO"), ptr, num);
}

void Gpu_CoCmd_MemCrc(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num, uint32_t result) {
    sendCommand(host, EVE_REG("__CMD_MEMCRC"), ptr, num, result);
}

void Gpu_CoCmd_MediaFifo(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t size) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_MEDIAFIFO"), ptr, size);
}

void Gpu_CoCmd_PlayVideo(Gpu_Hal_Context_t* host, uint32_t options) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_PLAYVIDEO"), options);
}

void Gpu_CoCmd_VideoStart(Gpu_Hal_Context_t* host) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_VIDEOSTART"));
}

void Gpu_CoCmd_VideoFrame(Gpu_Hal_Context_t* host, uint32_t dst, uint32_t ptr) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    sendCommand(host, EVE_REG("__CMD_VIDEOFRAME"), dst, ptr);
}

void Gpu_CoCmd_VideoStartF(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_VIDEOSTARTF"));
}

void Gpu_CoCmd_Inflate2(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t options) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_INFLATE2"), ptr, options);
}

void Gpu_CoCmd_Sha1(Gpu_Hal_Context_t* host, uint32_t src, uint32_t num, uint32_t hash) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_SHA1"), src, num, hash);
}

// --- the controller's clock

void Set_GpuClock(Gpu_Hal_Context_t* host) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    static uint32_t slot = 0;
    Gpu_CoCmd_Sync(host);
    Gpu_CoCmd_Memcpy(host, slot * 4, EVE_REG("__REG_CLOCK"), 4);
    App_Flush_Co_Buffer(host);
    Gpu_Hal_WaitCmdfifo_empty(host);
    slot = 1 - slot;
}

uint32_t Get_GpuClock(Gpu_Hal_Context_t* host) {
    NEEDS_EVE2_OR_EVE3(coProCmdsFile, __LINE__, ONLY_EVE2_OR_EVE3);
    const uint32_t first = Gpu_Hal_Rd32(host, 0);
    const uint32_t second = Gpu_Hal_Rd32(host, 4);
    return first > second ? first - second : second - first;
}

// --- flash commands

void Gpu_CoCmd_FlashErase(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHERASE"));
}

void Gpu_CoCmd_FlashAttach(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHATTACH"));
}

void Gpu_CoCmd_FlashDetach(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHDETACH"));
}

void Gpu_CoCmd_FlashSpiDesel(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHSPIDESEL"));
}

void Gpu_CoCmd_ClearCache(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_CLEARCACHE"));
}

void Gpu_CoCmd_FlashWrite(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHWRITE"), ptr, num);
}

void Gpu_CoCmd_FlashUpdate(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src, uint32_t num) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHUPDATE"), dest, src, num);
}

void Gpu_CoCmd_FlashRead(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src, uint32_t num) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHREAD"), dest, src, num);
}

void Gpu_CoCmd_FlashSource(Gpu_Hal_Context_t* host, uint32_t ptr) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHSOURCE"), ptr);
}

void Gpu_CoCmd_FlashSpiTx(Gpu_Hal_Context_t* host, uint32_t num) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHSPITX"), num);
}

void Gpu_CoCmd_FlashSpiRx(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHSPIRX"), ptr, num);
}

void Gpu_CoCmd_FlashFast(Gpu_Hal_Context_t* host, uint32_t result) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    sendCommand(host, EVE_REG("__CMD_FLASHFAST"), result);
}

void Gpu_CoCmd_FlashWriteExt(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t num,
                             const uint8_t* data) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    const auto bytes = static_cast<uint16_t>(12 + (num + 3) / 4 * 4);
    Gpu_CoCmd_StartFunc(host, bytes);
    Gpu_Copro_SendCmd(host, EVE_REG("__CMD_FLASHWRITE"));
    Gpu_Copro_SendCmd(host, dest);
    Gpu_Copro_SendCmd(host, num);
    for (uint32_t at = 0; at < num; at += 4) {
        uint32_t word = 0;
        std::memcpy(&word, data + at, sizeof(word));
        Gpu_Copro_SendCmd(host, word);
    }
    Gpu_CoCmd_EndFunc(host, bytes);
}

// --- flash helper

namespace {

constexpr uint32_t pageSize = 256;     // written as a whole
constexpr uint32_t sectorSize = 4096;  // updated as a whole
constexpr uint32_t readAlignment = 64; // of the flash address
constexpr uint8_t erased = 0xFF;
constexpr uint32_t unknownState = 0xFFFF;

void complete(Gpu_Hal_Context_t* host) {
    App_Flush_Co_Buffer(host);
    Gpu_Hal_WaitCmdfifo_empty(host);
}

void writePages(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t num, const uint8_t* data) {
    Gpu_CoCmd_FlashWriteExt(host, dest, num, data);
    complete(host);
}

void updateSectors(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src, uint32_t num) {
    Gpu_CoCmd_FlashUpdate(host, dest, src, num);
    complete(host);
}

uint8_t flashState(Gpu_Hal_Context_t* host) {
    return Gpu_Hal_Rd8(host, EVE_REG("__REG_FLASH_STATUS"));
}

using Command = void (*)(Gpu_Hal_Context_t*);

// Repeats a state-changing command until the flash is in `state`.
void repeatUntil(Gpu_Hal_Context_t* host, Command command, uint32_t state) {
    do {
        command(host);
        App_Flush_Co_Buffer(host);
    } while (flashState(host) != state);
}

void switchToBasic(Gpu_Hal_Context_t* host, uint8_t current) {
    if (current == EVE_REG("__FLASH_STATUS_FULL")) {
        repeatUntil(host, Gpu_CoCmd_FlashDetach, EVE_REG("__FLASH_STATUS_DETACHED"));
    }
    Gpu_CoCmd_FlashAttach(host);
    App_Flush_Co_Buffer(host);
}

// Returns the word that fast mode's result will stand in.
uint32_t switchToFull(Gpu_Hal_Context_t* host, uint8_t current) {
    if (current != EVE_REG("__FLASH_STATUS_BASIC")) {
        repeatUntil(host, Gpu_CoCmd_FlashAttach, EVE_REG("__FLASH_STATUS_BASIC"));
    }
    Gpu_CoCmd_FlashFast(host, 0);
    App_Flush_Co_Buffer_nowait(host);
    const uint32_t resultOffset = (host->cmd_write_offset - 1U) & 0xFFCU;
    return Gpu_Hal_Rd32(host, EVE_REG("__RAM_CMD") + resultOffset);
}

// Carries out a state-changing command and tells whether it led to `state`.
bool reaches(Gpu_Hal_Context_t* host, Command command, uint32_t state) {
    command(host);
    complete(host);
    return flashState(host) == state;
}

void enterFastMode(Gpu_Hal_Context_t* host) {
    Gpu_CoCmd_FlashFast(host, 0);
}

} // namespace

uint8_t Gpu_CoCmd_FlashHelper_GetState(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    return flashState(host);
}

void Gpu_CoCmd_FlashHelper_Init(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    while (flashState(host) == EVE_REG("__FLASH_STATUS_DETACHED")) {
        Gpu_CoCmd_FlashAttach(host); // not flushed: see the header
    }
}

void Gpu_CoCmd_FlashHelper_Erase(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    Gpu_CoCmd_FlashErase(host);
    complete(host);
}

void Gpu_CoCmd_FlashHelper_ClearCache(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    Gpu_CoCmd_ClearCache(host);
    complete(host);
}

Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Write(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t num,
                                               const uint8_t* data) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    if (dest % pageSize != 0) {
        return Flash_Cmd_Misaligned;
    }
    const uint32_t tail = num % pageSize;
    const uint32_t whole = num - tail;
    if (whole != 0 || tail == 0) {
        writePages(host, dest, whole, data);
    }
    if (tail != 0) {
        std::array<uint8_t, pageSize> page = {};
        page.fill(erased);
        std::copy_n(data + whole, tail, page.begin());
        writePages(host, dest + whole, pageSize, page.data());
    }
    return Flash_Cmd_Ok;
}

Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Update(Gpu_Hal_Context_t* host, uint32_t dest,
                                                uint32_t src, uint32_t num) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    if (src % wordSize != 0 || dest % sectorSize != 0) {
        return Flash_Cmd_Misaligned;
    }
    const uint32_t tail = num % sectorSize;
    const uint32_t whole = num - tail;
    if (whole != 0) {
        updateSectors(host, dest, src, whole);
    }
    if (tail != 0 || whole == 0) {
        updateSectors(host, dest + whole, src + whole, sectorSize);
    }
    return Flash_Cmd_Ok;
}

Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Read(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src,
                                              uint32_t num, uint8_t* out) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    if (dest % wordSize != 0 || src % readAlignment != 0) {
        return Flash_Cmd_Misaligned;
    }
    const uint32_t whole = num - num % wordSize;
    Gpu_CoCmd_FlashRead(host, dest, src, whole);
    complete(host);
    Gpu_Hal_RdMem(host, dest, out, whole);
    return Flash_Cmd_Ok;
}

uint32_t Gpu_CoCmd_FlashHelper_SwitchState(Gpu_Hal_Context_t* host, uint8_t state) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    const uint8_t current = flashState(host);
    if (current == state) {
        return 0;
    }
    if (state == EVE_REG("__FLASH_STATUS_DETACHED")) {
        Gpu_CoCmd_FlashDetach(host);
        App_Flush_Co_Buffer_nowait(host);
        return 0;
    }
    if (state == EVE_REG("__FLASH_STATUS_BASIC")) {
        switchToBasic(host, current);
        return 0;
    }
    if (state == EVE_REG("__FLASH_STATUS_FULL")) {
        return switchToFull(host, current);
    }
    return unknownState;
}

uint32_t Gpu_CoCmd_FlashHelper_SwitchFullMode(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3(coProCmdsFile, __LINE__, ONLY_EVE3);
    const bool full = reaches(host, Gpu_CoCmd_FlashDetach, EVE_REG("__FLASH_STATUS_DETACHED")) &&
                      reaches(host, Gpu_CoCmd_FlashAttach, EVE_REG("__FLASH_STATUS_BASIC")) &&
                      reaches(host, enterFastMode, EVE_REG("__FLASH_STATUS_FULL"));
    return full ? 1 : 0;
}
