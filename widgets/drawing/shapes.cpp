#include "shapes.h"

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "palette.h"

void setColor(Gpu_Hal_Context_t* host, uint32_t rgb) {
    App_WrCoCmd_Buffer(host, COLOR_RGB(rgb));
}

void beginShape(Gpu_Hal_Context_t* host, uint32_t primitive) {
    App_WrCoCmd_Buffer(host, BEGIN(primitive));
}

void addVertices(Gpu_Hal_Context_t* host, std::initializer_list<Point> points) {
    for (const Point& point : points) {
        App_WrCoCmd_Buffer(host, VERTEX2II(point.x, point.y, 0, 0));
    }
}

void endShape(Gpu_Hal_Context_t* host) {
    App_WrCoCmd_Buffer(host, END());
}

void drawShape(Gpu_Hal_Context_t* host, uint32_t primitive, std::initializer_list<Point> points) {
    beginShape(host, primitive);
    addVertices(host, points);
    endShape(host);
}

void drawOutline(Gpu_Hal_Context_t* host, Point topLeft, Point bottomRight) {
    drawShape(
        host, EVE_REG("__LINE_STRIP"),
        {topLeft, {bottomRight.x, topLeft.y}, bottomRight, {topLeft.x, bottomRight.y}, topLeft});
}

void drawBackground(Gpu_Hal_Context_t* host) {
    Gpu_CoCmd_Gradient(host, 21, 13, palette::backgroundFrom, 455, 268, palette::backgroundTo);
}
