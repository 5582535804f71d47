#include "waitcommands.h"

#include "nearest.h"
#include "rig.h"

namespace panel::script {

namespace {

constexpr int highestSignal = 64;

Progress doneIf(bool done) {
    return done ? Progress::Done : Progress::Waiting;
}

ActionPtr parseWaitExit(ScriptLine& line) {
    std::optional<int> status;
    std::optional<int> signal;
    if (line.optional(QStringLiteral("signal"))) {
        signal = line.integer(QStringLiteral("the signal"), 1, highestSignal);
    } else if (!line.atEnd()) {
        status = line.integer(QStringLiteral("the exit status"), 0, 255);
    }
    return make<WaitExit>(status, signal);
}

} // namespace

const CommandTable& waitCommands() {
    static const CommandTable table{
        {"wait time", [](ScriptLine& l) { return make<WaitTime>(l.time(QStringLiteral("TIME"))); },
         "TIME", "let the time pass, for example 500ms or 2s"},
        {"wait request", [](ScriptLine& l) { return make<WaitRequest>(takePattern(l)); }, "TEXT",
         "until the server has got a request TEXT since the last\n"
         "\"wait request\" or \"mark\""},
        {"wait log", [](ScriptLine& l) { return make<WaitLog>(takePattern(l)); }, "TEXT",
         "until the application has written a line TEXT since\n"
         "the last \"wait log\" or \"mark\""},
        {"wait connection", [](ScriptLine& /*line*/) { return make<WaitConnection>(true); }, "",
         "until a client is connected to the server"},
        {"wait no-connection", [](ScriptLine& /*line*/) { return make<WaitConnection>(false); }, "",
         "until none is"},
        {"wait exit", parseWaitExit, "[STATUS | signal N]",
         "until the application ends, in this way if one is\n"
         "given; it may do so while earlier lines are played"},
    };
    return table;
}

Progress WaitTime::play(Stage& stage) const {
    return doneIf(stage.elapsed() > duration);
}

Progress WaitRequest::play(Stage& stage) const {
    return doneIf(stage.rig().requests().take(pattern));
}

QString WaitRequest::instead(Stage& stage) const {
    return QStringLiteral("asked since the last \"wait request\" or \"mark\": ") +
           listNearestFirst(pattern, stage.rig().requests().notPassed());
}

Progress WaitLog::play(Stage& stage) const {
    return doneIf(stage.rig().log().take(pattern));
}

QString WaitLog::instead(Stage& stage) const {
    return QStringLiteral("written since the last \"wait log\" or \"mark\": ") +
           listNearestFirst(pattern, stage.rig().log().notPassed());
}

Progress WaitConnection::play(Stage& stage) const {
    return doneIf((stage.rig().server().connections() > 0) == connected);
}

QString WaitConnection::instead(Stage& stage) const {
    ServerThread& server = stage.rig().server();
    return server.isListening()
               ? QStringLiteral("the server has %1 clients").arg(server.connections())
               : QStringLiteral("the server is switched off");
}

Progress WaitExit::play(Stage& stage) const {
    const Application& application = stage.rig().application();
    const auto end = application.lastEnd();
    if (!end) {
        if (!application.isRunning()) {
            stage.fail(QStringLiteral("the application is not running"));
        }
        return Progress::Waiting;
    }
    if (!isMetBy(*end)) {
        stage.fail(QStringLiteral("it ended with %1").arg(end->text()));
    }
    return Progress::Done;
}

bool WaitExit::isMetBy(const ProcessEnd& end) const {
    if (signal) {
        return end.bySignal && end.code == *signal;
    }
    return !status || (!end.bySignal && end.code == *status);
}

} // namespace panel::script
