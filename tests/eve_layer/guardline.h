#pragma once

#include <gmock/gmock.h>

#include <fstream>
#include <string>

// Line `number`, from 1 on, of a file below the sources' directory.
inline std::string sourceLine(const std::string& file, int number) {
    std::ifstream source(SOURCE_DIRECTORY "/" + file);
    std::string line;
    while (number-- > 0 && std::getline(source, line)) {
    }
    return line;
}

// The message of a failed assertion of a coprocessor command, in a text that holds others besides:
// its source and line are those of a guard.
MATCHER(NamesALineWithAGuard, "") {
    const std::string file = "eve_layer/CoPro_Cmds.cpp";
    const std::size_t at = arg.find(": " + file + ":");
    if (at == std::string::npos) {
        return false;
    }
    const std::string line = sourceLine(file, std::stoi(arg.substr(at + file.size() + 3)));
    *result_listener << "which is the line: " << line;
    return line.find("NEEDS_EVE") != std::string::npos;
}
