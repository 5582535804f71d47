#include "App_Common.h"

#include "Gpu_Hal.h"
#include "displaysettings.h"
#include "word.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr uint32_t overrunSize = 512;

// The command buffer and the room behind it that a string may run into, in one object.
struct CommandMemory {
    uint8_t buffer[cmdBufferSize];
    uint8_t overrun[overrunSize];

    // Where byte `index` of both together is.
    uint8_t* at(uint32_t index) { return reinterpret_cast<uint8_t*>(this) + index; }
};

CommandMemory commandMemory;

constexpr uint32_t roundUpToWord(uint32_t bytes) {
    return (bytes + wordSize - 1) / wordSize * wordSize;
}

// Copies a string of `length` bytes and its terminator into `room` bytes, cut to fit.
void copyString(uint8_t* to, const char* s, std::size_t length, std::size_t room) {
    if (length >= room) {
        std::puts("CmdBuffer overflow");
        length = room - 1;
    }
    std::memcpy(to, s, length);
    to[length] = 0;
}

// The bytes of the pending stream that there are, whatever the index says.
uint32_t pendingBytes() {
    return std::min(CmdBuffer_Index, static_cast<uint32_t>(sizeof commandMemory));
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

uint8_t (&CmdBuffer)[cmdBufferSize] = commandMemory.buffer;
uint32_t CmdBuffer_Index = 0;
uint8_t DlBuffer[dlBufferSize];
uint32_t DlBuffer_Index = 0;

void App_WrCoCmd_Buffer(Gpu_Hal_Context_t* host, uint32_t word) {
    if (CmdBuffer_Index >= cmdBufferSize) {
        App_Flush_Co_Buffer_nowait(host);
    }
    std::memcpy(commandMemory.at(CmdBuffer_Index), &word, wordSize);
    CmdBuffer_Index += wordSize;
}

void App_WrCoStr_Buffer(Gpu_Hal_Context_t* host, const char* s) {
    if (CmdBuffer_Index >= cmdBufferSize) {
        std::puts("CmdBuffer overflow");
        App_Flush_Co_Buffer(host);
    }
    const std::size_t length = std::strlen(s);
    const auto room = static_cast<uint32_t>(sizeof commandMemory) - CmdBuffer_Index;
    copyString(commandMemory.at(CmdBuffer_Index), s, length, room);
    const auto bytes = static_cast<uint16_t>(length + 1); // counted modulo 65536
    CmdBuffer_Index += std::min(roundUpToWord(bytes), room);
}

void App_WrDl_Buffer(Gpu_Hal_Context_t* /*host*/, uint32_t word) {
    if (DlBuffer_Index > dlBufferSize - wordSize) {
        std::puts("DlBuffer overflow");
    } else {
        std::memcpy(DlBuffer + DlBuffer_Index, &word, wordSize);
    }
    DlBuffer_Index += wordSize; // beyond the size too: the index tells how much was lost
}

void App_Flush_DL_Buffer(Gpu_Hal_Context_t* host) {
    if (DlBuffer_Index != 0) {
        const uint32_t held = std::min(DlBuffer_Index, dlBufferSize);
        Gpu_Hal_WrMem(host, EVE_REG("__RAM_DL"), DlBuffer, held);
    }
    DlBuffer_Index = 0;
}

void App_Flush_Co_Buffer(Gpu_Hal_Context_t* host) {
    if (CmdBuffer_Index != 0) {
        Gpu_Hal_WrCmdBuf(host, commandMemory.at(0), pendingBytes());
    }
    CmdBuffer_Index = 0;
}

void App_Flush_Co_Buffer_nowait(Gpu_Hal_Context_t* host) {
    if (CmdBuffer_Index != 0) {
        Gpu_Hal_WrCmdBuf_nowait(host, commandMemory.at(0), pendingBytes());
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
