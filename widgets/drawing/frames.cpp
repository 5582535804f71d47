#include "frames.h"

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "Gpu_Hal.h"
#include "displaylistwords.h"
#include "displaysettings.h"

namespace {

void flushAndWait(Gpu_Hal_Context_t* host) {
    App_Flush_Co_Buffer(host);
    Gpu_Hal_WaitCmdfifo_empty(host);
}

} // namespace

uint16_t saveStaticPicture(Gpu_Hal_Context_t* host, uint32_t address) {
    flushAndWait(host);
    const uint16_t size = Gpu_Hal_Rd16(host, EVE_REG("__REG_CMD_DL"));
    Gpu_CoCmd_Memcpy(host, address, EVE_REG("__RAM_DL"), size);
    return size;
}

void startFrame(Gpu_Hal_Context_t* host, uint32_t address, uint16_t size) {
    Gpu_CoCmd_Dlstart(host);
    Gpu_CoCmd_Append(host, address, size);
}

void showFrame(Gpu_Hal_Context_t* host) {
    App_WrCoCmd_Buffer(host, DISPLAY());
    Gpu_CoCmd_Swap(host);
    flushAndWait(host);
}
