#include "drawinghelpers.h"

#include "App_Common.h"
#include "Gpu_Hal.h"
#include "displaylistwords.h"
#include "displaysettings.h"

#include <array>
#include <cstring>

namespace {

// An empty, black picture.
constexpr std::array<uint32_t, 3> DLCODE_BOOTUP = {CLEAR_COLOR_RGB(0x000000), CLEAR(1, 1, 1),
                                                   DISPLAY()};

constexpr int fadeSteps = 34;
constexpr int fadeStep = 3;
constexpr uint32_t fadeStepMs = 2;
constexpr int fadeOutFrom = 100; // to 1: the backlight is left on
constexpr uint8_t fullBrightness = 128;

constexpr unsigned quarterTurn = 0x4000;
constexpr unsigned sintabStepBits = 7; // a table entry every 128 units of angle

// floor(32767 sin(i pi / 256)): a quarter turn, and one entry more to interpolate towards.
constexpr std::array<uint16_t, 130> sintab = {
    0,     402,   804,   1206,  1607,  2009,  2410,  2811,  3211,  3611,  4011,  4409,  4807,
    5205,  5601,  5997,  6392,  6786,  7179,  7571,  7961,  8351,  8739,  9126,  9511,  9895,
    10278, 10659, 11038, 11416, 11792, 12166, 12539, 12909, 13278, 13645, 14009, 14372, 14732,
    15090, 15446, 15799, 16150, 16499, 16845, 17189, 17530, 17868, 18204, 18537, 18867, 19194,
    19519, 19840, 20159, 20474, 20787, 21096, 21402, 21705, 22004, 22301, 22594, 22883, 23169,
    23452, 23731, 24006, 24278, 24546, 24811, 25072, 25329, 25582, 25831, 26077, 26318, 26556,
    26789, 27019, 27244, 27466, 27683, 27896, 28105, 28309, 28510, 28706, 28897, 29085, 29268,
    29446, 29621, 29790, 29955, 30116, 30272, 30424, 30571, 30713, 30851, 30984, 31113, 31236,
    31356, 31470, 31580, 31684, 31785, 31880, 31970, 32056, 32137, 32213, 32284, 32350, 32412,
    32468, 32520, 32567, 32609, 32646, 32678, 32705, 32727, 32744, 32757, 32764, 32767, 32764,
};

void setBacklight(Gpu_Hal_Context_t* host, int duty) {
    Gpu_Hal_Wr8(host, EVE_REG("__REG_PWM_DUTY"), static_cast<uint8_t>(duty));
}

void fade(Gpu_Hal_Context_t* host, int duty, int change) {
    for (int step = 0; step < fadeSteps; ++step) {
        setBacklight(host, duty);
        Gpu_Hal_Sleep(fadeStepMs);
        duty += change;
    }
}

} // namespace

int32_t scaling = 0;

int32_t Gpu_Hal_Dec2Ascii(char* str, int32_t value) {
    std::array<char, 10> digits{}; // least significant first
    std::size_t count = 0;
    auto magnitude = static_cast<uint32_t>(value);
    char* end = str + std::strlen(str);
    if (value < 0) {
        *end++ = '-';
        magnitude = 0 - magnitude;
    }
    do {
        digits[count++] = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude > 0);
    while (count > 0) {
        *end++ = digits[--count];
    }
    *end = '\0';
    return 0;
}

void Gpu_ClearScreen(Gpu_Hal_Context_t* host) {
    std::array<uint8_t, sizeof DLCODE_BOOTUP> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<uint8_t>(DLCODE_BOOTUP[i / 4] >> 8 * (i % 4));
    }
    Gpu_Hal_WrMem(host, EVE_REG("__RAM_DL"), bytes.data(), bytes.size());
    Gpu_Hal_Wr8(host, EVE_REG("__REG_DLSWAP"), static_cast<uint8_t>(EVE_REG("__DLSWAP_FRAME")));
}

void fadeout(Gpu_Hal_Context_t* host) {
    fade(host, fadeOutFrom, -fadeStep);
}

void fadein(Gpu_Hal_Context_t* host) {
    fade(host, 0, fadeStep);
    setBacklight(host, fullBrightness);
}

float cal_average(const float* values, uint16_t count) {
    float sum = 0;
    for (uint16_t i = 0; i < count; ++i) {
        sum += values[i];
    }
    return sum / static_cast<float>(count);
}

int16_t qsin(uint16_t a) {
    const bool secondHalf = (a & 2 * quarterTurn) != 0;
    unsigned p = a & (2 * quarterTurn - 1);
    if ((a & quarterTurn) != 0) {
        p = 2 * quarterTurn - p; // the second quarter mirrors the first
    }
    const unsigned index = p >> sintabStepBits;
    const auto fraction = static_cast<int>(p & ((1U << sintabStepBits) - 1));
    const int step = sintab[index + 1] - sintab[index];
    const int v = sintab[index] + (fraction * step >> sintabStepBits);
    return static_cast<int16_t>(secondHalf ? -v : v);
}

int16_t qcos(uint16_t a) {
    return qsin(static_cast<uint16_t>(a + quarterTurn));
}

void polarxy(int r, float th, int* x, int* y, int ox, int oy) {
    // By way of a signed type, so that negative angles are whole turns away from positive ones.
    const auto t = static_cast<uint16_t>(static_cast<int64_t>(th));
    *x = ox * 16 + (r * qsin(t) >> 11) + 16;
    *y = oy * 16 - (r * qcos(t) >> 11);
}

void polar(Gpu_Hal_Context_t* host, int r, float th, int ox, int oy) {
    int x = 0;
    int y = 0;
    polarxy(r, th, &x, &y, ox, oy);
    App_WrCoCmd_Buffer(host, VERTEX2F(x, y));
}

float da(float degrees, int16_t base) {
    return (degrees - static_cast<float>(base)) * 32768 / 360;
}

int dc(int16_t v) {
    return scaling * v >> 12;
}

int tween(int t, int from, int to) {
    constexpr uint32_t full = 0xFFFF;
    const uint32_t rest = full - (static_cast<uint32_t>(t) & full);
    const uint32_t restCubed = rest * (rest * rest >> 16) >> 16;
    const auto eased = static_cast<int64_t>(full - restCubed);
    return static_cast<int>(from + ((to - from) * eased >> 16));
}
