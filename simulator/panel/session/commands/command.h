#pragma once

#include "action.h"
#include "scriptline.h"

#include <vector>

namespace panel::script {

// A command of the language: its name, one or two words, and what reads the rest of its line.
// What is wrong there becomes the line's error; whatever is returned then is not played.
struct Command {
    const char* name;
    ActionPtr (*parse)(ScriptLine& line);
    const char* arguments; // for help(), as is the next
    const char* help;      // a line feed where the text is too long for one line
};

// All commands of one role.
using CommandTable = std::vector<Command>;

// The tables of all roles, one after the other; a new one is added in command.cpp.
const CommandTable& allCommands();

// --- For tables.

template<typename Kind, typename... Arguments>
ActionPtr make(Arguments... arguments) {
    return std::make_shared<const Kind>(std::move(arguments)...);
}

// A text of the line in which every '*' stands for anything.
QString takePattern(ScriptLine& line);
// How often or how many, from 1.
std::uint32_t takeCount(ScriptLine& line);

} // namespace panel::script
