#include "sessioncommands.h"

#include "rig.h"

#include <cstdio>

namespace panel::script {

const CommandTable& sessionCommands() {
    static const CommandTable table{
        {"report", [](ScriptLine& /*line*/) { return make<Report>(); }, "",
         "print SPI messages, bytes, frames, requests, memory"},
        {"end", [](ScriptLine& /*line*/) { return make<End>(); }, "",
         "end the session here instead of after the last line"},
    };
    return table;
}

Progress Report::play(Stage& stage) const {
    std::printf("%s", qUtf8Printable(stage.rig().statistics()));
    std::fflush(stdout);
    return Progress::Done;
}

Progress End::play(Stage& stage) const {
    stage.endScript();
    return Progress::Waiting;
}

} // namespace panel::script
