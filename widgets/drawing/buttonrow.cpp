#include "buttonrow.h"

#include "App_Common.h"
#include "Gpu.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "palette.h"
#include "shapes.h"

void drawOptionsIcon(Gpu_Hal_Context_t* host) {
    drawShape(host, EVE_REG("__LINES"),
              {{435, 20}, {463, 20}, {435, 28}, {463, 28}, {435, 36}, {463, 36}});
}

void drawStartIcon(Gpu_Hal_Context_t* host, uint32_t face) {
    constexpr Point bottom{332, 39};
    constexpr Point tip{350, 28};
    constexpr Point top{332, 17};

    // The lower edge fills green above itself; the upper edge repaints what is above it in the
    // colour of the button, so that a triangle remains.
    setColor(host, palette::playGreen);
    App_WrCoCmd_Buffer(host, SCISSOR_SIZE(wholePanel, wholePanel));
    App_WrCoCmd_Buffer(host, SCISSOR_XY(330, 16));
    beginShape(host, EVE_REG("__EDGE_STRIP_A"));
    addVertices(host, {bottom, tip});
    setColor(host, face);
    addVertices(host, {top});
    endShape(host);

    App_WrCoCmd_Buffer(host, SCISSOR_XY(0, 0));
    setColor(host, palette::ink);
    App_WrCoCmd_Buffer(host, LINE_WIDTH(13));
    drawShape(host, EVE_REG("__LINE_STRIP"), {bottom, tip, top, bottom});
    App_WrCoCmd_Buffer(host, LINE_WIDTH(defaultLineWidth));
}

void drawHeldRunButton(Gpu_Hal_Context_t* host, bool started) {
    drawButtonFace(host, runButton, palette::pressedFace);
    if (!started) {
        drawStartIcon(host, palette::pressedFace);
    }
}

void drawHeldOptionsButton(Gpu_Hal_Context_t* host) {
    drawButtonFace(host, optionsButton, palette::pressedFace);
    drawOptionsIcon(host);
}

void drawStopIcon(Gpu_Hal_Context_t* host, bool held) {
    // Blanks the start triangle first.
    setColor(host, held ? palette::pressedFace : palette::buttonFace);
    drawShape(host, EVE_REG("__RECTS"), {{351, 16}, {328, 40}});
    setColor(host, palette::stopRed);
    drawShape(host, EVE_REG("__RECTS"), {{347, 20}, {332, 36}});
}
