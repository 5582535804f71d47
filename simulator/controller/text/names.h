#pragma once

#include "generation.h"

#include <cstdint>
#include <string>

// Names of what crosses the bus, for whoever shows it to a person.

namespace controller {

// "REG_ID"; "REG_CMD_READ+1" for a byte inside a register; empty where there is no register.
std::string registerName(Generation generation, std::uint32_t address);

// The region and the offset in it, "RAM_CMD+16"; "0x2A0000" where nothing is mapped.
std::string memoryName(Generation generation, std::uint32_t address);

// "ACTIVE"; "0x99" for a byte that is no host command.
std::string hostCommandName(std::uint8_t command);

// "VERTEX2II 240 120 0 0", "BEGIN RECTS": name and fields in the order of the programming
// interface, what stands for one of several things by its name, numbers in decimal, colours and
// addresses in hexadecimal; "0xFF000000" for a word that is none. Field
// widths are those of E2 and E3 (E1's scissor words differ).
std::string displayListWordText(std::uint32_t word);
// The same with the generation's own field widths.
std::string displayListWordText(Generation generation, std::uint32_t word);

} // namespace controller
