#include "backbutton.h"

#include "App_Common.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "palette.h"
#include "shapes.h"

void drawBackArrow(Gpu_Hal_Context_t* host) {
    App_WrCoCmd_Buffer(host, LINE_WIDTH(28));
    drawShape(host, EVE_REG("__LINES"),
              {{18, 28}, {42, 28}, {16, 28}, {28, 16}, {16, 28}, {28, 40}});
}

void drawHeldBackButton(Gpu_Hal_Context_t* host) {
    drawButtonFace(host, backButton, palette::pressedFace);
    drawBackArrow(host);
}
