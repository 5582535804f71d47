#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "Gpu.h"
#include "Gpu_Hal.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "drawinghelpers.h"
#include "generationinforce.h"
#include "streams.h"

#include <array>

namespace {

// One piece of the picture, an L4 bitmap. The design is 800 units wide and 242 high.
struct element {
    uint32_t source; // address in general memory once the pieces are inflated
    int16_t w;       // size and position in design units
    int16_t h;
    int16_t x;
    int16_t y;
};

constexpr std::array<element, 13> el = {{
    {0x0000, 74, 145, 54, 48},
    {0x14F5, 110, 218, 18, 11},
    {0x43CB, 28, 29, 8, 66},
    {0x4561, 28, 29, 8, 145},
    {0x46F7, 30, 28, 29, 45},
    {0x489B, 30, 29, 29, 167},
    {0x4A4E, 30, 28, 51, 23},
    {0x4BF2, 30, 28, 51, 189},
    {0x4D96, 28, 28, 73, 1},
    {0x4F1E, 28, 28, 73, 211},
    {0x50A6, 400, 149, 190, 47},
    {0xC50E, 194, 120, 597, 47},
    {0xF286, 602, 29, 190, 183},
}};
constexpr int accentPiece = 9; // the last of those that slide in from the left
constexpr int turningPiece = 10;
constexpr int rightPiece = 11;
constexpr int fadingPiece = 12;

constexpr int designWidth = 800;
constexpr int designHeight = 242;
constexpr int16_t leftStart = -130; // how far off their places the sliding pieces start
constexpr int16_t rightStart = 210;
constexpr int pivotX = 190; // what the turning piece turns about
constexpr int pivotY = 107;

constexpr uint32_t white = 0xFFFFFF;
constexpr uint32_t ink = 0x231F20;
constexpr uint32_t accent = 0xED1C24;
constexpr uint32_t blue = 0x3871C1;
constexpr uint32_t logoHandle = 15;

// The animation runs from 0 to 0x10000; so does every movement in it, in a phase of its own.
constexpr int fullRun = 0x10000;
constexpr int frameStep = 550;
constexpr int afterLastFrame = 464; // 120 frames, modulo the run

constexpr int leftBegins = 6553; // 0.1 of the run; each piece a little after the one before
constexpr int leftDelay = 6553;
constexpr int leftSpeed = 3;
constexpr int turnBegins = 6553;
constexpr int turnSpeed = 2;
constexpr int rightBegins = 26214; // 0.4
constexpr int rightSpeed = 3;
constexpr int fadeBegins = 49152; // 0.75
constexpr int fadeSpeed = 4;

constexpr int fixed16(int value) {
    return value * 0x10000;
}

// Vertical offset that centres the design on the panel, in 1/16 pixel.
int16_t YOFFSET = 0;

int panelWidth() {
    return static_cast<int>(EVE_REG("__DispWidth"));
}

int panelHeight() {
    return static_cast<int>(EVE_REG("__DispHeight"));
}

// A movement between two values: it has not begun while `phase` is negative and is over after the
// full run.
int moved(int phase, int from, int to) {
    if (phase < 0) {
        return from;
    }
    return phase < fullRun ? tween(phase, from, to) : to;
}

// Selects a piece's bitmap.
void setup_element(Gpu_Hal_Context_t* host, const element* e) {
    const auto width = static_cast<uint32_t>(dc(e->w) / 16 + 1);
    const auto height = static_cast<uint32_t>(dc(e->h) / 16 + 1);
    const uint32_t filter = EVE_REG("__BILINEAR");
    const uint32_t wrap = EVE_REG("__BORDER");
    App_WrCoCmd_Buffer(host, BITMAP_SOURCE(e->source));
    App_WrCoCmd_Buffer(host, BITMAP_LAYOUT(EVE_REG("__L4"), static_cast<uint32_t>(e->w / 2),
                                           static_cast<uint32_t>(e->h)));
    App_WrCoCmd_Buffer(host, BITMAP_SIZE(filter, wrap, wrap, width, height));
    if (!isEve1()) {
        App_WrCoCmd_Buffer(host, BITMAP_LAYOUT_H(static_cast<uint32_t>(e->w >> 11), 0));
        App_WrCoCmd_Buffer(host, BITMAP_SIZE_H(width >> 9, height >> 9));
    }
}

// Draws a piece `dx`, in 1/16 pixel, to the right of its place.
void draw(Gpu_Hal_Context_t* host, const element* e, int dx) {
    setup_element(host, e);
    App_WrCoCmd_Buffer(host, VERTEX2F(dc(e->x) + dx, YOFFSET + dc(e->y)));
}

void drawLeftPieces(Gpu_Hal_Context_t* host, int t) {
    for (int i = 0; i <= accentPiece; ++i) {
        if (i == accentPiece) {
            App_WrCoCmd_Buffer(host, COLOR_RGB(accent));
        }
        const int phase = leftSpeed * (t - leftBegins) - i * leftDelay;
        draw(host, &el.at(static_cast<std::size_t>(i)), moved(phase, dc(leftStart), 0));
    }
}

// The turning piece is placed by its transform alone, while its window, as large as the piece,
// stays in the screen's corner: what is turned or moved out of that does not show.
void drawTurningPiece(Gpu_Hal_Context_t* host, int t) {
    constexpr int quarterTurn = 0x4000;
    const int angle = -moved(turnSpeed * (t - turnBegins), quarterTurn, 0);
    const int yshift = YOFFSET * (fixed16(designWidth / 16) / panelWidth()); // 16.16 design units

    App_WrCoCmd_Buffer(host, COLOR_RGB(blue));
    App_WrCoCmd_Buffer(host, SAVE_CONTEXT());
    setup_element(host, &el[turningPiece]);
    Gpu_CoCmd_LoadIdentity(host);
    Gpu_CoCmd_Scale(host, scaling, scaling);
    Gpu_CoCmd_Translate(host, fixed16(pivotX), yshift + fixed16(pivotY));
    Gpu_CoCmd_Rotate(host, angle);
    Gpu_CoCmd_Translate(host, 0, fixed16(el[turningPiece].y - pivotY));
    Gpu_CoCmd_SetMatrix(host);
    App_WrCoCmd_Buffer(host, VERTEX2F(0, 0));
    App_WrCoCmd_Buffer(host, RESTORE_CONTEXT());
}

void drawFrame(Gpu_Hal_Context_t* host, int t) {
    Gpu_CoCmd_Dlstart(host);
    App_WrCoCmd_Buffer(host, CLEAR_COLOR_RGB(white));
    App_WrCoCmd_Buffer(host, CLEAR(1, 1, 1));
    App_WrCoCmd_Buffer(host, BITMAP_HANDLE(logoHandle));
    App_WrCoCmd_Buffer(host, BEGIN(EVE_REG("__BITMAPS")));
    Gpu_CoCmd_LoadIdentity(host);
    Gpu_CoCmd_Scale(host, scaling, scaling);
    Gpu_CoCmd_SetMatrix(host);
    App_WrCoCmd_Buffer(host, COLOR_RGB(ink));

    drawLeftPieces(host, t);
    drawTurningPiece(host, t);
    draw(host, &el[rightPiece], moved(rightSpeed * (t - rightBegins), dc(rightStart), 0));

    const int alpha = moved(fadeSpeed * (t - fadeBegins), 0, 255);
    App_WrCoCmd_Buffer(host, COLOR_RGB(ink));
    App_WrCoCmd_Buffer(host, COLOR_A(static_cast<uint32_t>(alpha)));
    draw(host, &el[fadingPiece], 0);

    App_WrCoCmd_Buffer(host, DISPLAY());
    Gpu_CoCmd_Swap(host);
    App_Flush_Co_Buffer(host);
    Gpu_Hal_WaitCmdfifo_empty(host);
}

void inflatePieces(Gpu_Hal_Context_t* host) {
    constexpr uint32_t destination = 0;
    Gpu_Hal_WrCmd32(host, EVE_REG("__CMD_INFLATE"));
    Gpu_Hal_WrCmd32(host, destination);
    Gpu_Hal_WrCmdBuf(host, assets::logoPieces.data(),
                     static_cast<uint32_t>(assets::logoPieces.size()));
    App_Flush_Co_Buffer(host);
    Gpu_Hal_WaitCmdfifo_empty(host);
}

} // namespace

void App_Show_Logo(Gpu_Hal_Context_t* host) {
    scaling = fixed16(panelWidth()) / designWidth;
    YOFFSET = static_cast<int16_t>((panelHeight() * 16 - dc(designHeight)) / 2);
    inflatePieces(host);

    int t = 0;
    do {
        drawFrame(host, t);
        t = (t + frameStep) % fullRun;
    } while (t != afterLastFrame);

    Gpu_CoCmd_Dlstart(host);
    Gpu_ClearScreen(host);
    App_Flush_Co_Buffer(host);
    Gpu_Hal_WaitCmdfifo_empty(host);
    Gpu_Hal_Sleep(20);
}
