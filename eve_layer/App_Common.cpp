#include "App_Common.h"

#include "Gpu_Hal.h"
#include "displaysettings.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

std::array<uint8_t, cmdBufferSize + cmdBufferOverrun> CmdBuffer;
uint32_t CmdBuffer_Index = 0;
std::array<uint8_t, dlBufferSize> DlBuffer;
uint32_t DlBuffer_Index = 0;

namespace {

constexpr uint32_t wordSize = 4;

constexpr uint32_t roundUpToWord(uint32_t bytes) {
    return (bytes + wordSize - 1) / wordSize * wordSize;
}

// Copies a string with its terminator into `room` bytes, cut to fit.
void copyString(uint8_t* to, const char* s, std::size_t room) {
    const std::size_t length = std::min(std::strlen(s), room - 1);
    std::memcpy(to, s, length);
    to[length] = 0;
}

// Tells a touch tag once, when it is released.
class TagOnRelease {
public:
    // `read`: the tag being touched, 0 for none. Returns the tag released, 0 for none.
    uint8_t poll(uint8_t read) {
        if (read != 0) {
            temp_tag = read;
            return 0;
        }
        const uint8_t ret_tag = temp_tag;
        temp_tag = 0;
        return ret_tag;
    }

private:
    uint8_t temp_tag = 0;
};

} // namespace

void App_WrCoCmd_Buffer(Gpu_Hal_Context_t* host, uint32_t word) {
    if (CmdBuffer_Index >= cmdBufferSize) {
        App_Flush_Co_Buffer_nowait(host);
    }
    std::memcpy(CmdBuffer.data() + CmdBuffer_Index, &word, wordSize);
    CmdBuffer_Index += wordSize;
}

void App_WrCoStr_Buffer(Gpu_Hal_Context_t* host, const char* s) {
    if (CmdBuffer_Index >= cmdBufferSize) {
        std::puts("CmdBuffer overflow");
        App_Flush_Co_Buffer(host);
    }
    const auto room = static_cast<uint32_t>(CmdBuffer.size()) - CmdBuffer_Index;
    copyString(CmdBuffer.data() + CmdBuffer_Index, s, room);
    const auto bytes = static_cast<uint16_t>(std::strlen(s) + 1); // counted modulo 65536
    CmdBuffer_Index += std::min(roundUpToWord(bytes), room);
}

void App_WrDl_Buffer(Gpu_Hal_Context_t* /*host*/, uint32_t word) {
    if (DlBuffer_Index >= dlBufferSize) {
        std::puts("DlBuffer overflow");
    } else {
        std::memcpy(DlBuffer.data() + DlBuffer_Index, &word, wordSize);
    }
    DlBuffer_Index += wordSize; // beyond the size too: the index tells how much was lost
}

void App_Flush_DL_Buffer(Gpu_Hal_Context_t* host) {
    if (DlBuffer_Index != 0) {
        const uint32_t held = std::min(DlBuffer_Index, dlBufferSize);
        Gpu_Hal_WrMem(host, EVE_REG("__RAM_DL"), DlBuffer.data(), held);
    }
    DlBuffer_Index = 0;
}

void App_Flush_Co_Buffer(Gpu_Hal_Context_t* host) {
    if (CmdBuffer_Index != 0) {
        Gpu_Hal_WrCmdBuf(host, CmdBuffer.data(), CmdBuffer_Index);
    }
    CmdBuffer_Index = 0;
}

void App_Flush_Co_Buffer_nowait(Gpu_Hal_Context_t* host) {
    if (CmdBuffer_Index != 0) {
        Gpu_Hal_WrCmdBuf_nowait(host, CmdBuffer.data(), CmdBuffer_Index);
    }
    CmdBuffer_Index = 0;
}

void App_Set_DlBuffer_Index(uint32_t index) {
    DlBuffer_Index = index;
}

void App_Set_CmdBuffer_Index(uint32_t index) {
    CmdBuffer_Index = index;
}

uint8_t App_Read_Tag(Gpu_Hal_Context_t* host) {
    static TagOnRelease tag;
    return tag.poll(Gpu_Hal_Rd8(host, EVE_REG("__REG_TOUCH_TAG")));
}

uint8_t App_Touch_Update(Gpu_Hal_Context_t* host, uint8_t* touched_tag, uint16_t* x, uint16_t* y) {
    static TagOnRelease tag;
    *touched_tag = Gpu_Hal_Rd8(host, EVE_REG("__REG_TOUCH_TAG"));
    const uint8_t released = tag.poll(*touched_tag);
    const uint32_t xy = Gpu_Hal_Rd32(host, EVE_REG("__REG_TOUCH_SCREEN_XY"));
    *x = static_cast<uint16_t>(xy >> 16);
    *y = static_cast<uint16_t>(xy & 0xFFFFU);
    return released;
}

void App_Play_Sound(Gpu_Hal_Context_t* host, uint8_t sound, uint8_t volume, uint8_t note) {
    Gpu_Hal_Wr8(host, EVE_REG("__REG_VOL_SOUND"), volume);
    Gpu_Hal_Wr16(host, EVE_REG("__REG_SOUND"), static_cast<uint16_t>(sound | (note << 8)));
    Gpu_Hal_Wr8(host, EVE_REG("__REG_PLAY"), 1);
}
