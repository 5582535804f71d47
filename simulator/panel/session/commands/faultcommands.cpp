#include "faultcommands.h"

#include "rig.h"

namespace panel::script {

namespace {

ActionPtr parseServerFault(ScriptLine& line) {
    const QString name = line.word(QStringLiteral("the fault"));
    const auto fault = server::faultFromName(name);
    if (!fault) {
        line.fail(QStringLiteral("the server knows no fault \"%1\"; it knows %2")
                      .arg(name, server::faultNames().join(QStringLiteral(", "))));
    }
    return make<ServerFault>(fault.value_or(server::Fault::None));
}

bool takeState(ScriptLine& line, const char* good, const char* bad) {
    return line.oneOf(QStringLiteral("the state"), QString::fromLatin1(good),
                      QString::fromLatin1(bad));
}

} // namespace

const CommandTable& faultCommands() {
    static const CommandTable table{
        {"server fault", parseServerFault, "FAULT", "misbehave from now on; see below"},
        {"board transfers",
         [](ScriptLine& l) { return make<BoardTransfers>(takeState(l, "working", "failing")); },
         "working|failing", "whether SPI messages get through"},
        {"controller identity",
         [](ScriptLine& l) {
             return make<ControllerIdentity>(l.hexadecimal(QStringLiteral("the identity")));
         },
         "WORD", "another chip id, hexadecimal"},
        {"controller answering",
         [](ScriptLine& l) { return make<ControllerAnswering>(takeState(l, "yes", "no")); },
         "yes|no", "\"no\": every read gives 0, as without a chip"},
        {"controller coprocessor",
         [](ScriptLine& l) {
             return make<CoprocessorStalled>(!takeState(l, "running", "stalled"));
         },
         "running|stalled", "\"stalled\": it takes no more commands, as if hung"},
    };
    return table;
}

Progress ServerFault::play(Stage& stage) const {
    stage.rig().server().apply(
        [this](server::MeasurementServer& server) { server.setFault(fault); });
    return Progress::Done;
}

Progress BoardTransfers::play(Stage& stage) const {
    stage.rig().board().setTransfersFail(!working);
    return Progress::Done;
}

Progress ControllerIdentity::play(Stage& stage) const {
    stage.rig().module().setIdentity(word);
    return Progress::Done;
}

Progress ControllerAnswering::play(Stage& stage) const {
    stage.rig().module().setAnswering(answering);
    return Progress::Done;
}

Progress CoprocessorStalled::play(Stage& stage) const {
    stage.rig().module().setCoprocessorStalled(stalled);
    return Progress::Done;
}

} // namespace panel::script
