#pragma once

// How one coprocessor command is put together; for the sources of CoPro_Cmds.h only.

#include "CoPro_Cmds.h"
#include "displaysettings.h"
#include "eveassert.h"
#include "generationinforce.h"

#include <cstdint>

// End the process in a function that the generation in force lacks. For the first line of it.
#define NEEDS_EVE2_OR_EVE3()                                                                       \
    EVE_ASSERT(!isEve1(), "!EVE1 && \"this function is worked only on EVE2 or EVE3\"",             \
               "eve_layer/CoPro_Cmds.cpp", __LINE__, __PRETTY_FUNCTION__)
#define NEEDS_EVE3()                                                                               \
    EVE_ASSERT(isEve3(), "EVE3 && \"This function worked only on EVE3 device\"",                   \
               "eve_layer/CoPro_Cmds.cpp", __LINE__, __PRETTY_FUNCTION__)

// Two 16-bit arguments in one word.
constexpr uint32_t halves(int low, int high) {
    return (static_cast<uint32_t>(low) & 0xFFFFU) | (static_cast<uint32_t>(high) << 16);
}

// A whole command: its code and its argument words, in order.
template<typename... Words>
void sendCommand(Gpu_Hal_Context_t* host, uint32_t code, Words... words) {
    constexpr auto bytes = static_cast<uint16_t>(4 * (1 + sizeof...(words)));
    Gpu_CoCmd_StartFunc(host, bytes);
    Gpu_Copro_SendCmd(host, code);
    (Gpu_Copro_SendCmd(host, static_cast<uint32_t>(words)), ...);
    Gpu_CoCmd_EndFunc(host, bytes);
}
