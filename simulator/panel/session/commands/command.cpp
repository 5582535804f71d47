#include "command.h"

#include "applicationcommands.h"
#include "expectationcommands.h"
#include "faultcommands.h"
#include "fingercommands.h"
#include "framecommands.h"
#include "inspectioncommands.h"
#include "servercommands.h"
#include "sessioncommands.h"
#include "waitcommands.h"

namespace panel::script {

namespace {

constexpr int mostCounted = 1000000;

} // namespace

const CommandTable& allCommands() {
    static const CommandTable all = [] {
        CommandTable together;
        // In the order of the help.
        for (const CommandTable& table :
             {frameCommands(), waitCommands(), fingerCommands(), serverCommands(),
              applicationCommands(), faultCommands(), expectationCommands(), inspectionCommands(),
              sessionCommands()}) {
            together.insert(together.end(), table.begin(), table.end());
        }
        return together;
    }();
    return all;
}

QString takePattern(ScriptLine& line) {
    return line.word(QStringLiteral("the text"));
}

std::uint32_t takeCount(ScriptLine& line) {
    return static_cast<std::uint32_t>(line.integer(QStringLiteral("the count"), 1, mostCounted));
}

} // namespace panel::script
