#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "Gpu_Hal.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "generationinforce.h"
#include "wakeup.h"

namespace {

constexpr uint8_t chipPresent = 0x7C; // what "__REG_ID" reads once the controller runs
constexpr uint32_t bringUpBootMs = 300;
constexpr uint32_t pollIntervalMs = 100;

void write8(Gpu_Hal_Context_t* host, uint32_t addr, uint32_t value) {
    Gpu_Hal_Wr8(host, addr, static_cast<uint8_t>(value));
}

void write16(Gpu_Hal_Context_t* host, uint32_t addr, uint32_t value) {
    Gpu_Hal_Wr16(host, addr, static_cast<uint16_t>(value));
}

// Polls a register until it reads `wanted`. Without a time-out: there is nothing to do without a
// controller.
void waitForRegister(Gpu_Hal_Context_t* host, uint32_t addr, uint8_t wanted) {
    uint8_t read = Gpu_Hal_Rd8(host, addr);
    while (read != wanted) {
        read = Gpu_Hal_Rd8(host, addr);
        Gpu_Hal_Sleep(pollIntervalMs);
    }
}

void setPanelTiming(Gpu_Hal_Context_t* host) {
    write16(host, EVE_REG("__REG_HCYCLE"), EVE_REG("__DispHCycle"));
    write16(host, EVE_REG("__REG_HOFFSET"), EVE_REG("__DispHOffset"));
    write16(host, EVE_REG("__REG_HSYNC0"), EVE_REG("__DispHSync0"));
    write16(host, EVE_REG("__REG_HSYNC1"), EVE_REG("__DispHSync1"));
    write16(host, EVE_REG("__REG_VCYCLE"), EVE_REG("__DispVCycle"));
    write16(host, EVE_REG("__REG_VOFFSET"), EVE_REG("__DispVOffset"));
    write16(host, EVE_REG("__REG_VSYNC0"), EVE_REG("__DispVSync0"));
    write16(host, EVE_REG("__REG_VSYNC1"), EVE_REG("__DispVSync1"));
    write8(host, EVE_REG("__REG_SWIZZLE"), EVE_REG("__DispSwizzle"));
    write8(host, EVE_REG("__REG_PCLK_POL"), EVE_REG("__DispPCLKPol"));
    write16(host, EVE_REG("__REG_HSIZE"), EVE_REG("__DispWidth"));
    write16(host, EVE_REG("__REG_VSIZE"), EVE_REG("__DispHeight"));
    write16(host, EVE_REG("__REG_CSPREAD"), EVE_REG("__DispCSpread"));
    write16(host, EVE_REG("__REG_DITHER"), EVE_REG("__DispDither"));
    write16(host, EVE_REG("__REG_ROTATE"), EVE_REG("__DispRotate"));
}

// Drives the controller's own lines to the panel, among them display enable and backlight, high.
void enablePanel(Gpu_Hal_Context_t* host) {
    if (isEve1()) {
        write8(host, EVE_REG("__REG_GPIO_DIR"), 0xFF);
        write8(host, EVE_REG("__REG_GPIO"), 0xFF);
    } else {
        write16(host, EVE_REG("__REG_GPIOX_DIR"), 0xFFFF);
        write16(host, EVE_REG("__REG_GPIOX"), 0xFFFF);
    }
}

} // namespace

void App_Common_Init(Gpu_Hal_Context_t* host) {
    wakeController(host, isEve1(), bringUpBootMs);
    waitForRegister(host, EVE_REG("__REG_ID"), chipPresent);
    waitForRegister(host, EVE_REG("__REG_CPURESET"), 0);
    setPanelTiming(host);
    enablePanel(host);
    // The pixel clock starts last, when there is an empty frame to show.
    Gpu_ClearScreen(host);
    write8(host, EVE_REG("__REG_PCLK"), EVE_REG("__DispPCLK"));
    host->cmd_write_offset = Gpu_Hal_Rd16(host, EVE_REG("__REG_CMD_WRITE"));
}

void App_Common_Close(Gpu_Hal_Context_t* host) {
    Gpu_Hal_Close(host);
    Gpu_Hal_DeInit();
}

void App_Calibrate_Screen(Gpu_Hal_Context_t* host) {
    constexpr int16_t font = 26;
    const auto centreX = static_cast<int16_t>(EVE_REG("__DispWidth") / 2);
    const auto centreY = static_cast<int16_t>(EVE_REG("__DispHeight") / 2);
    const auto centred = static_cast<uint16_t>(EVE_REG("__OPT_CENTERX") | EVE_REG("__OPT_CENTERY"));

    Gpu_CoCmd_Dlstart(host);
    App_WrCoCmd_Buffer(host, CLEAR(1, 1, 1));
    App_WrCoCmd_Buffer(host, COLOR_RGB(0xFFFFFF));
    Gpu_CoCmd_Text(host, centreX, centreY, font, centred, "Please tap on a dot");
    Gpu_CoCmd_Calibrate(host, 0);
    App_Flush_Co_Buffer(host);
    Gpu_Hal_WaitCmdfifo_empty(host);
}
