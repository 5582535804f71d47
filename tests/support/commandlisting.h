#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The words of a coprocessor stream for EVE_2 and EVE_3 as text, one command or display-list
// instruction a line, with every field of it, and consecutive vertices on one line:
//
//     TEXT 160 28 font 30 CENTER "COUNTER MODE"
//     COLOR_RGB 19190C
//     BEGIN LINES
//     VERTEX2II (435,20) (463,20)
//     END
//
// Written from the controller's own numbers, apart from the code under test. A word that it does
// not know, or that has bits set where it knows of none, is listed as WORD and its value, and so
// never matches. Only the padding after a string is left out: its content is unspecified.
std::string listCommands(const std::vector<uint32_t>& words);
