#include "faultcommands.h"

#include "rig.h"

namespace panel::script {

namespace {

QString takeFaultName(ScriptLine& line) {
    QString name = line.word(QStringLiteral("the fault"));
    if (!faultNames().contains(name)) {
        line.fail(QStringLiteral("there is no fault \"%1\"; there is %2")
                      .arg(name, faultNames().join(QStringLiteral(", "))));
    }
    return name;
}

ActionPtr parseServerFault(ScriptLine& line) {
    QString error;
    const auto rule = server::parseFault(line.rest(QStringLiteral("the fault")), &error);
    if (!rule) {
        line.fail(error);
    }
    return make<ServerFault>(rule.value_or(server::FaultRule()));
}

ActionPtr parseFault(ScriptLine& line) {
    if (line.optional(QStringLiteral("off"))) {
        return make<FaultOff>(line.atEnd() ? QString() : takeFaultName(line));
    }
    QString error;
    const auto order = parseFaultOrder(line.rest(QStringLiteral("the fault")), &error);
    if (!order) {
        line.fail(error);
    }
    return make<FaultOn>(order.value_or(FaultOrder()));
}

bool takeState(ScriptLine& line, const char* good, const char* bad) {
    return line.oneOf(QStringLiteral("the state"), QString::fromLatin1(good),
                      QString::fromLatin1(bad));
}

} // namespace

const CommandTable& faultCommands() {
    static const CommandTable table{
        {"fault", parseFault, "FAULT [after TIME]",
         "break something; see below. \"fault off [FAULT]\" mends\nthat, or everything"},
        {"wait fault", [](ScriptLine& l) { return make<WaitFault>(takeFaultName(l)); }, "FAULT",
         "until it has struck"},
        {"server fault", parseServerFault, "FAULT",
         "a fault of the server in place of others; see below,\nwithout \"server-\""},
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
        [this](server::MeasurementServer& server) { server.setFault(rule); });
    return Progress::Done;
}

Progress FaultOn::play(Stage& stage) const {
    stage.rig().faults().begin(order);
    return Progress::Done;
}

Progress FaultOff::play(Stage& stage) const {
    if (name.isEmpty()) {
        stage.rig().faults().endAll();
    } else {
        stage.rig().faults().end(name);
    }
    return Progress::Done;
}

Progress WaitFault::play(Stage& stage) const {
    return stage.rig().faults().strikes(name) > 0 ? Progress::Done : Progress::Waiting;
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
