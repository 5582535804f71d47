#include "wakeup.h"

#include "Gpu_Hal.h"

void wakeController(Gpu_Hal_Context_t* host, bool asEve1, uint32_t bootTimeMs) {
    Gpu_Hal_Init();
    Gpu_Hal_Open(host);
    Gpu_Hal_Powercycle(true);
    if (!asEve1) {
        Gpu_Hal_SetSPI(host, GPU_SPI_SINGLE_CHANNEL, GPU_SPI_ONE_DUMMY);
    }
    Gpu_ClockSelect(GPU_CLOCK_EXTERNAL);
    Gpu_PLL_FreqSelect(GPU_PLL_48MHZ);
    Gpu_PowerModeSwitch(GPU_POWER_ACTIVE);
    Gpu_Hal_Sleep(bootTimeMs);
}
