#include "logowidget.h"

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "Gpu.h"
#include "Gpu_Hal.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "frames.h"
#include "images.h"
#include "shapes.h"
#include "streams.h"

namespace {

constexpr uint32_t imageAddress = 0; // in the controller's general memory
constexpr uint16_t imageWidth = 470;
constexpr uint16_t imageHeight = 85;
constexpr uint32_t imageLeft = 5;

constexpr uint32_t firstVisibleWidth = 175; // what the breathing phase shows
constexpr uint32_t lastVisibleWidth = 495;
constexpr uint32_t visibleWidthStep = 40;

constexpr unsigned int framePauseMs = 50;
constexpr unsigned int lastPauseMs = 500;

void startLogoFrame(Gpu_Hal_Context_t* host, uint32_t visibleWidth) {
    Gpu_CoCmd_Dlstart(host);
    drawBackground(host);
    App_WrCoCmd_Buffer(host, BITMAP_HANDLE(0));
    Gpu_CoCmd_SetBitmap(host, imageAddress, static_cast<uint16_t>(EVE_REG("__ARGB4")), imageWidth,
                        imageHeight);
    App_WrCoCmd_Buffer(host, SCISSOR_SIZE(visibleWidth, 272));
    beginShape(host, EVE_REG("__BITMAPS"));
    App_WrCoCmd_Buffer(host, PALETTE_SOURCE(0));
}

void finishLogoFrame(Gpu_Hal_Context_t* host, uint32_t imageTop) {
    addVertices(host, {{imageLeft, imageTop}});
    endShape(host);
    showFrame(host);
    Gpu_Hal_Sleep(framePauseMs);
}

// Runs 0 to 100 and back while `step` counts up.
int triangleWave(int step) {
    const int rest = step % 100;
    return (step / 100) % 2 != 0 ? 100 - rest : rest;
}

// Scales the image vertically to `percent` of its height.
void scaleVertically(Gpu_Hal_Context_t* host, int percent) {
    Gpu_CoCmd_BitmapTransform(host, 0, 0, 100, 0, 0, percent, 0, 0, 100, 0, 0, 100, 0);
}

// The left part of the image swells and shrinks between 80 and 100 percent around line 142.
void breathe(Gpu_Hal_Context_t* host) {
    constexpr double smallest = 0.8;
    constexpr double range = 1.0 - smallest;

    for (int step = 0; step < 300; step += 20) {
        const double percent = (triangleWave(step) * range / 100 + smallest) * 100;
        startLogoFrame(host, firstVisibleWidth);
        scaleVertically(host, static_cast<int>(percent));
        finishLogoFrame(host, static_cast<uint32_t>(142 - percent * imageHeight / 200));
    }
}

// The rest of the image is uncovered from left to right.
void uncover(Gpu_Hal_Context_t* host) {
    for (uint32_t width = firstVisibleWidth; width <= lastVisibleWidth; width += visibleWidthStep) {
        startLogoFrame(host, width);
        finishLogoFrame(host, 100);
    }
}

} // namespace

void LogoWidget::setup() {
    inflateImage(host(), imageAddress, assets::logo);
    breathe(host());
    uncover(host());
    Gpu_Hal_Sleep(lastPauseMs);
    terminate();
}
