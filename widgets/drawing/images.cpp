#include "images.h"

#include "Gpu_Hal.h"
#include "displaysettings.h"

void inflateImage(Gpu_Hal_Context_t* host, uint32_t address, const unsigned char* stream,
                  std::size_t size) {
    Gpu_Hal_WrCmd32(host, EVE_REG("__CMD_INFLATE"));
    Gpu_Hal_WrCmd32(host, address);
    Gpu_Hal_WrCmdBuf(host, stream, static_cast<uint32_t>(size));
}
