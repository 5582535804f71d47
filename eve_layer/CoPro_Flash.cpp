#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "Gpu_Hal.h"
#include "coprocommand.h"

#include <algorithm>
#include <array>
#include <cstring>

// --- flash commands

void Gpu_CoCmd_FlashErase(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHERASE"));
}

void Gpu_CoCmd_FlashAttach(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHATTACH"));
}

void Gpu_CoCmd_FlashDetach(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHDETACH"));
}

void Gpu_CoCmd_FlashSpiDesel(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHSPIDESEL"));
}

void Gpu_CoCmd_ClearCache(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_CLEARCACHE"));
}

void Gpu_CoCmd_FlashWrite(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHWRITE"), ptr, num);
}

void Gpu_CoCmd_FlashUpdate(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src, uint32_t num) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHUPDATE"), dest, src, num);
}

void Gpu_CoCmd_FlashRead(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src, uint32_t num) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHREAD"), dest, src, num);
}

void Gpu_CoCmd_FlashSource(Gpu_Hal_Context_t* host, uint32_t ptr) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHSOURCE"), ptr);
}

void Gpu_CoCmd_FlashSpiTx(Gpu_Hal_Context_t* host, uint32_t num) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHSPITX"), num);
}

void Gpu_CoCmd_FlashSpiRx(Gpu_Hal_Context_t* host, uint32_t ptr, uint32_t num) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHSPIRX"), ptr, num);
}

void Gpu_CoCmd_FlashFast(Gpu_Hal_Context_t* host, uint32_t result) {
    NEEDS_EVE3();
    sendCommand(host, EVE_REG("__CMD_FLASHFAST"), result);
}

void Gpu_CoCmd_FlashWriteExt(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t num,
                             const uint8_t* data) {
    NEEDS_EVE3();
    const auto bytes = static_cast<uint16_t>(12 + (num + 3) / 4 * 4);
    Gpu_CoCmd_StartFunc(host, bytes);
    Gpu_Copro_SendCmd(host, EVE_REG("__CMD_FLASHWRITE"));
    Gpu_Copro_SendCmd(host, dest);
    Gpu_Copro_SendCmd(host, num);
    for (uint32_t at = 0; at < num; at += 4) {
        uint32_t word = 0;
        std::memcpy(&word, data + at, sizeof(word));
        Gpu_Copro_SendCmd(host, word);
    }
    Gpu_CoCmd_EndFunc(host, bytes);
}

// --- flash helper

namespace {

constexpr uint32_t pageSize = 256;     // written as a whole
constexpr uint32_t sectorSize = 4096;  // updated as a whole
constexpr uint32_t readAlignment = 64; // of the flash address
constexpr uint32_t wordSize = 4;       // alignment of addresses in controller memory
constexpr uint8_t erased = 0xFF;
constexpr uint32_t unknownState = 0xFFFF;

void complete(Gpu_Hal_Context_t* host) {
    App_Flush_Co_Buffer(host);
    Gpu_Hal_WaitCmdfifo_empty(host);
}

void writePages(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t num, const uint8_t* data) {
    Gpu_CoCmd_FlashWriteExt(host, dest, num, data);
    complete(host);
}

void updateSectors(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src, uint32_t num) {
    Gpu_CoCmd_FlashUpdate(host, dest, src, num);
    complete(host);
}

uint8_t flashState(Gpu_Hal_Context_t* host) {
    return Gpu_Hal_Rd8(host, EVE_REG("__REG_FLASH_STATUS"));
}

using Command = void (*)(Gpu_Hal_Context_t*);

// Repeats a state-changing command until the flash is in `state`.
void repeatUntil(Gpu_Hal_Context_t* host, Command command, uint32_t state) {
    do {
        command(host);
        App_Flush_Co_Buffer(host);
    } while (flashState(host) != state);
}

void switchToBasic(Gpu_Hal_Context_t* host, uint8_t current) {
    if (current == EVE_REG("__FLASH_STATUS_FULL")) {
        repeatUntil(host, Gpu_CoCmd_FlashDetach, EVE_REG("__FLASH_STATUS_DETACHED"));
    }
    Gpu_CoCmd_FlashAttach(host);
    App_Flush_Co_Buffer(host);
}

// Returns the word that fast mode's result will stand in.
uint32_t switchToFull(Gpu_Hal_Context_t* host, uint8_t current) {
    if (current != EVE_REG("__FLASH_STATUS_BASIC")) {
        repeatUntil(host, Gpu_CoCmd_FlashAttach, EVE_REG("__FLASH_STATUS_BASIC"));
    }
    Gpu_CoCmd_FlashFast(host, 0);
    App_Flush_Co_Buffer_nowait(host);
    const uint32_t resultOffset = (host->cmd_write_offset - 1U) & 0xFFCU;
    return Gpu_Hal_Rd32(host, EVE_REG("__RAM_CMD") + resultOffset);
}

// Carries out a state-changing command and tells whether it led to `state`.
bool reaches(Gpu_Hal_Context_t* host, Command command, uint32_t state) {
    command(host);
    complete(host);
    return flashState(host) == state;
}

void enterFastMode(Gpu_Hal_Context_t* host) {
    Gpu_CoCmd_FlashFast(host, 0);
}

} // namespace

uint8_t Gpu_CoCmd_FlashHelper_GetState(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3();
    return flashState(host);
}

void Gpu_CoCmd_FlashHelper_Init(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3();
    while (flashState(host) == EVE_REG("__FLASH_STATUS_DETACHED")) {
        Gpu_CoCmd_FlashAttach(host); // not flushed: see the header
    }
}

void Gpu_CoCmd_FlashHelper_Erase(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3();
    Gpu_CoCmd_FlashErase(host);
    complete(host);
}

void Gpu_CoCmd_FlashHelper_ClearCache(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3();
    Gpu_CoCmd_ClearCache(host);
    complete(host);
}

Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Write(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t num,
                                               const uint8_t* data) {
    NEEDS_EVE3();
    if (dest % pageSize != 0) {
        return Flash_Cmd_Misaligned;
    }
    const uint32_t tail = num % pageSize;
    const uint32_t whole = num - tail;
    if (whole != 0 || tail == 0) {
        writePages(host, dest, whole, data);
    }
    if (tail != 0) {
        std::array<uint8_t, pageSize> page = {};
        page.fill(erased);
        std::copy_n(data + whole, tail, page.begin());
        writePages(host, dest + whole, pageSize, page.data());
    }
    return Flash_Cmd_Ok;
}

Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Update(Gpu_Hal_Context_t* host, uint32_t dest,
                                                uint32_t src, uint32_t num) {
    NEEDS_EVE3();
    if (src % wordSize != 0 || dest % sectorSize != 0) {
        return Flash_Cmd_Misaligned;
    }
    const uint32_t tail = num % sectorSize;
    const uint32_t whole = num - tail;
    if (whole != 0) {
        updateSectors(host, dest, src, whole);
    }
    if (tail != 0 || whole == 0) {
        updateSectors(host, dest + whole, src + whole, sectorSize);
    }
    return Flash_Cmd_Ok;
}

Flash_Cmd_Status_t Gpu_CoCmd_FlashHelper_Read(Gpu_Hal_Context_t* host, uint32_t dest, uint32_t src,
                                              uint32_t num, uint8_t* out) {
    NEEDS_EVE3();
    if (dest % wordSize != 0 || src % readAlignment != 0) {
        return Flash_Cmd_Misaligned;
    }
    const uint32_t whole = num - num % wordSize;
    Gpu_CoCmd_FlashRead(host, dest, src, whole);
    complete(host);
    Gpu_Hal_RdMem(host, dest, out, whole);
    return Flash_Cmd_Ok;
}

uint32_t Gpu_CoCmd_FlashHelper_SwitchState(Gpu_Hal_Context_t* host, uint8_t state) {
    NEEDS_EVE3();
    const uint8_t current = flashState(host);
    if (current == state) {
        return 0;
    }
    if (state == EVE_REG("__FLASH_STATUS_DETACHED")) {
        Gpu_CoCmd_FlashDetach(host);
        App_Flush_Co_Buffer_nowait(host);
        return 0;
    }
    if (state == EVE_REG("__FLASH_STATUS_BASIC")) {
        switchToBasic(host, current);
        return 0;
    }
    if (state == EVE_REG("__FLASH_STATUS_FULL")) {
        return switchToFull(host, current);
    }
    return unknownState;
}

uint32_t Gpu_CoCmd_FlashHelper_SwitchFullMode(Gpu_Hal_Context_t* host) {
    NEEDS_EVE3();
    const bool full = reaches(host, Gpu_CoCmd_FlashDetach, EVE_REG("__FLASH_STATUS_DETACHED")) &&
                      reaches(host, Gpu_CoCmd_FlashAttach, EVE_REG("__FLASH_STATUS_BASIC")) &&
                      reaches(host, enterFastMode, EVE_REG("__FLASH_STATUS_FULL"));
    return full ? 1 : 0;
}
