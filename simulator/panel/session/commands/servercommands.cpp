#include "servercommands.h"

#include "rig.h"

namespace panel::script {

namespace {

ActionPtr parseServerValues(ScriptLine& line) {
    if (line.optional(QStringLiteral("random"))) {
        return make<ServerValues>(std::nullopt);
    }
    std::array<double, 4> values{};
    for (double& value : values) {
        value = line.number(QStringLiteral("a channel's value (four, or \"random\")"));
    }
    return make<ServerValues>(values);
}

// The first words of all requests.
QStringList commandWords() {
    return {QStringLiteral("PARAMS?"), QStringLiteral("DATA?"), QStringLiteral("START"),
            QStringLiteral("STOP"), QStringLiteral("DAC")};
}

ActionPtr parseServerReply(ScriptLine& line) {
    const QString command = line.word(QStringLiteral("the command"));
    if (line.error().isEmpty() && !commandWords().contains(command)) {
        line.fail(QStringLiteral("the server knows no command \"%1\"; it knows %2")
                      .arg(command, commandWords().join(QStringLiteral(", "))));
    }
    std::optional<QByteArray> reply;
    if (!line.optional(QStringLiteral("default"))) {
        const QString text = line.word(QStringLiteral("the reply"));
        reply = text.isEmpty() ? QByteArray("") : text.toUtf8() + '\n';
    }
    return make<ServerReply>(command.toUtf8(), reply);
}

ActionPtr parseServerParams(ScriptLine& line) {
    const double timeConstant = line.number(QStringLiteral("the time constant"));
    std::array<double, 4> levels{};
    for (double& level : levels) {
        level = line.number(QStringLiteral("a trigger level (four)"));
    }
    return make<ServerParams>(timeConstant, levels);
}

} // namespace

const CommandTable& serverCommands() {
    static const CommandTable table{
        {"server start", [](ScriptLine& /*line*/) { return make<ServerSwitch>(true); }, "",
         "let the measurement server listen"},
        {"server stop", [](ScriptLine& /*line*/) { return make<ServerSwitch>(false); }, "",
         "close its port and connections"},
        {"server values", parseServerValues, "A B C D | random", "what DATA? gives from now on"},
        {"server reply", parseServerReply, "COMMAND TEXT|default",
         "answer COMMAND (its first word) with TEXT and a line\n"
         "feed; an empty TEXT is no answer at all"},
        {"server params", parseServerParams, "T L0 L1 L2 L3",
         "its time constant, seconds, and trigger levels, volts"},
    };
    return table;
}

Progress ServerSwitch::play(Stage& stage) const {
    ServerThread& server = stage.rig().server();
    if (!on) {
        server.stop();
    } else if (!server.start()) {
        stage.fail(server.error(), ExitStatus::PortTaken);
    }
    return Progress::Done;
}

Progress ServerValues::play(Stage& stage) const {
    stage.rig().server().apply([this](server::MeasurementServer& server) {
        if (values) {
            server.setFixedSample(*values);
        } else {
            server.clearFixedSample();
        }
    });
    return Progress::Done;
}

Progress ServerReply::play(Stage& stage) const {
    stage.rig().server().apply([this](server::MeasurementServer& server) {
        if (reply) {
            server.setReply(command, *reply);
        } else {
            server.clearReply(command);
        }
    });
    return Progress::Done;
}

Progress ServerParams::play(Stage& stage) const {
    stage.rig().server().apply([this](server::MeasurementServer& server) {
        server.setParams({timeConstant, levels});
    });
    return Progress::Done;
}

} // namespace panel::script
