#include "errorwidget.h"

#include "App_Common.h"
#include "Gpu.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "palette.h"
#include "shapes.h"
#include "text.h"

namespace {

constexpr Point signLeft{160, 200};
constexpr Point signTop{240, 50};
constexpr Point signRight{320, 200};

void drawTriangle(Gpu_Hal_Context_t* host) {
    setColor(host, palette::signGrey);
    App_WrCoCmd_Buffer(host, SCISSOR_SIZE(wholePanel, signLeft.y)); // the fill's lower end
    App_WrCoCmd_Buffer(host, LINE_WIDTH(32));
    setColor(host, palette::signYellow);
    drawShape(host, EVE_REG("__EDGE_STRIP_B"), {signLeft, signTop, signRight});

    App_WrCoCmd_Buffer(host, SCISSOR_SIZE(wholePanel, wholePanel));
    setColor(host, palette::ink);
    drawShape(host, EVE_REG("__LINE_STRIP"), {signLeft, signTop, signRight, signLeft});
    App_WrCoCmd_Buffer(host, SCISSOR_SIZE(wholePanel, wholePanel));
}

void drawPoint(Gpu_Hal_Context_t* host, Point centre, uint32_t radius) {
    App_WrCoCmd_Buffer(host, POINT_SIZE(radius * 16));
    drawShape(host, EVE_REG("__FTPOINTS"), {centre});
}

void drawExclamationMark(Gpu_Hal_Context_t* host) {
    // The two ends of the bar, then the dot.
    drawPoint(host, {240, 120}, 14);
    drawPoint(host, {240, 152}, 5);
    drawPoint(host, {240, 173}, 9);

    // Right and left half of the tapering bar, each cut at the middle.
    App_WrCoCmd_Buffer(host, SCISSOR_XY(240, 0));
    drawShape(host, EVE_REG("__EDGE_STRIP_L"), {{255, 123}, {246, 154}});
    App_WrCoCmd_Buffer(host, SCISSOR_SIZE(240, wholePanel));
    App_WrCoCmd_Buffer(host, SCISSOR_XY(0, 0));
    drawShape(host, EVE_REG("__EDGE_STRIP_R"), {{227, 124}, {236, 154}});
    App_WrCoCmd_Buffer(host, SCISSOR_SIZE(wholePanel, wholePanel));
}

} // namespace

void ErrorWidget::setup() {
    drawBackground(host());
    drawTriangle(host());
    drawExclamationMark(host());
    drawCentredText(host(), {242, 232}, 29, "Error: Can't connect to server!");
    terminate();
}
