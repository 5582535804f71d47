#include "buttons.h"

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "displaylistwords.h"
#include "displaysettings.h"

namespace {

void drawButton(Gpu_Hal_Context_t* host, const Button& button) {
    Gpu_CoCmd_Button(host, static_cast<int16_t>(button.topLeft.x),
                     static_cast<int16_t>(button.topLeft.y), static_cast<int16_t>(button.width),
                     static_cast<int16_t>(button.height), static_cast<int16_t>(button.font),
                     static_cast<uint16_t>(EVE_REG("__OPT_FLAT")), button.text);
}

} // namespace

void setTagging(Gpu_Hal_Context_t* host, bool on) {
    App_WrCoCmd_Buffer(host, TAG_MASK(on ? 1 : 0));
}

void drawTaggedButton(Gpu_Hal_Context_t* host, const Button& button) {
    App_WrCoCmd_Buffer(host, TAG(static_cast<uint32_t>(button.tag)));
    drawButton(host, button);
}

void drawButtonFace(Gpu_Hal_Context_t* host, const Button& button, uint32_t face) {
    Gpu_CoCmd_FgColor(host, face);
    drawButton(host, button);
}
