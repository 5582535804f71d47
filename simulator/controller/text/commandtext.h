#pragma once

#include "commandtable.h"
#include "generation.h"

#include <cstdint>
#include <string>
#include <vector>

namespace controller {

// "CMD_TEXT 160 28 30 OPT_CENTER": a coprocessor command with as many of its argument words as are
// given. Coordinates and numbers are in decimal, options by name, the rest in hexadecimal; bits
// that are no option of the command follow as a number, "OPT_FLAT|0x31".
std::string commandText(Generation generation, const CommandInfo& command,
                        const std::vector<std::uint32_t>& words);

} // namespace controller
