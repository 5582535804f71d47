#include "script.h"

#include "scriptline.h"

#include <QRegularExpression>

#include <algorithm>

namespace panel::script {

namespace {

constexpr int panelWidth = 480;
constexpr int panelHeight = 272;
constexpr int mostCounted = 1000000;
constexpr int highestSignal = 64;
constexpr int mostKilobytes = 1 << 20;

// A command's first words and what reads the rest of its line.
struct Command {
    const char* name;
    Action (*parse)(ScriptLine& line);
    const char* arguments;
    const char* help;
};

Action parseFinger(ScriptLine& line, Finger::Action action) {
    Finger finger;
    finger.action = action;
    if (action != Finger::Action::Release) {
        finger.x = line.integer(QStringLiteral("X"), 0, panelWidth - 1);
        finger.y = line.integer(QStringLiteral("Y"), 0, panelHeight - 1);
    }
    if (action != Finger::Action::Tap) {
        finger.now = line.optional(QStringLiteral("now"));
    }
    return finger;
}

QString pattern(ScriptLine& line) {
    return line.word(QStringLiteral("the text"));
}

std::uint32_t count(ScriptLine& line) {
    return static_cast<std::uint32_t>(line.integer(QStringLiteral("the count"), 1, mostCounted));
}

Action parseWaitExit(ScriptLine& line) {
    WaitExit wait;
    if (line.optional(QStringLiteral("signal"))) {
        wait.signal = line.integer(QStringLiteral("the signal"), 1, highestSignal);
    } else if (!line.atEnd()) {
        wait.status = line.integer(QStringLiteral("the exit status"), 0, 255);
    }
    return wait;
}

Action parseScreenshot(ScriptLine& line) {
    Screenshot screenshot;
    screenshot.name = line.word(QStringLiteral("the picture's name"));
    static const QRegularExpression fileName(QStringLiteral("^[A-Za-z0-9][A-Za-z0-9_.-]*$"));
    if (!fileName.match(screenshot.name).hasMatch()) {
        line.fail(QStringLiteral("a picture's name has letters, digits, '-', '_' and '.' only, "
                                 "not \"%1\"")
                      .arg(screenshot.name));
    }
    screenshot.now = line.optional(QStringLiteral("now"));
    return FrameStep{screenshot};
}

Action parseServerValues(ScriptLine& line) {
    if (line.optional(QStringLiteral("random"))) {
        return ServerValues{};
    }
    std::array<double, 4> values{};
    for (double& value : values) {
        value = line.number(QStringLiteral("a channel's value (four, or \"random\")"));
    }
    return ServerValues{values};
}

Action parseServerFault(ScriptLine& line) {
    const QString name = line.word(QStringLiteral("the fault"));
    const auto fault = server::faultFromName(name);
    if (!fault) {
        line.fail(QStringLiteral("the server knows no fault \"%1\"; it knows %2")
                      .arg(name, server::faultNames().join(QStringLiteral(", "))));
    }
    return ServerFault{fault.value_or(server::Fault::None)};
}

Action parseServerReply(ScriptLine& line) {
    ServerReply reply;
    reply.command = line.word(QStringLiteral("the command")).toUtf8();
    if (!line.optional(QStringLiteral("default"))) {
        const QString text = line.word(QStringLiteral("the reply"));
        reply.reply = text.isEmpty() ? QByteArray("") : text.toUtf8() + '\n';
    }
    return reply;
}

Action parseServerParams(ScriptLine& line) {
    ServerParams params;
    params.timeConstant = line.number(QStringLiteral("the time constant"));
    for (double& level : params.levels) {
        level = line.number(QStringLiteral("a trigger level (four)"));
    }
    return params;
}

Action parseExpectRegister(ScriptLine& line) {
    ExpectRegister expected;
    const QString name = line.word(QStringLiteral("the register"));
    const auto id = controller::registerNamed(name.toStdString());
    if (!id) {
        line.fail(QStringLiteral("the controller has no register \"%1\"").arg(name));
    }
    expected.id = id.value_or(controller::Register{});
    expected.value = line.integer(QStringLiteral("its value"), INT32_MIN, INT32_MAX);
    return expected;
}

const Command commands[] = {
    {"wait time", [](ScriptLine& l) -> Action { return WaitTime{l.time(QStringLiteral("TIME"))}; },
     "TIME", "let the time pass, for example 500ms or 2s"},
    {"wait frames", [](ScriptLine& l) -> Action { return FrameStep{WaitFrames{count(l)}}; }, "N",
     "until N more frames have been scanned"},
    {"wait swaps", [](ScriptLine& l) -> Action { return FrameStep{WaitSwaps{count(l)}}; }, "N",
     "until N more display lists have been shown"},
    {"wait reads", [](ScriptLine& l) -> Action { return FrameStep{WaitReads{count(l)}}; }, "N",
     "until the application has read the touched tag N more\n"
     "times; with 2 it has drawn all it had to"},
    {"wait text",
     [](ScriptLine& l) -> Action {
         return FrameStep{WaitText{pattern(l), true}};
     },
     "TEXT", "until the panel shows TEXT"},
    {"wait no-text",
     [](ScriptLine& l) -> Action {
         return FrameStep{WaitText{pattern(l), false}};
     },
     "TEXT", "until the panel does not show TEXT"},
    {"wait quiet", [](ScriptLine&) -> Action { return FrameStep{WaitQuiet{}}; }, "",
     "until the coprocessor is idle and no swap is pending"},
    {"wait request", [](ScriptLine& l) -> Action { return WaitRequest{pattern(l)}; }, "TEXT",
     "until the server has got a request TEXT since the last\n"
     "\"wait request\" or \"mark\""},
    {"wait log", [](ScriptLine& l) -> Action { return WaitLog{pattern(l)}; }, "TEXT",
     "until the application has written a line TEXT since\nthe last \"wait log\" or \"mark\""},
    {"wait connection", [](ScriptLine&) -> Action { return WaitConnection{true}; }, "",
     "until a client is connected to the server"},
    {"wait no-connection", [](ScriptLine&) -> Action { return WaitConnection{false}; }, "",
     "until none is"},
    {"wait exit", parseWaitExit, "[STATUS | signal N]",
     "until the application ends, in this way if one is\n"
     "given; it may do so while earlier lines are played"},
    {"press", [](ScriptLine& l) -> Action { return parseFinger(l, Finger::Action::Press); },
     "X Y [now]", "finger down, until the application has noticed"},
    {"move", [](ScriptLine& l) -> Action { return parseFinger(l, Finger::Action::Move); },
     "X Y [now]", "slide it; \"now\": do not wait for the application"},
    {"release", [](ScriptLine& l) -> Action { return parseFinger(l, Finger::Action::Release); },
     "[now]", "finger up, until the application has noticed and drawn"},
    {"tap", [](ScriptLine& l) -> Action { return parseFinger(l, Finger::Action::Tap); }, "X Y",
     "press and release"},
    {"screenshot", parseScreenshot, "NAME [now]",
     "keep NAME.png of the first quiet frame, or \"now\":\n"
     "of the very frame the line before ended with"},
    {"server start", [](ScriptLine&) -> Action { return ServerSwitch{true}; }, "",
     "let the measurement server listen"},
    {"server stop", [](ScriptLine&) -> Action { return ServerSwitch{false}; }, "",
     "close its port and connections"},
    {"server values", parseServerValues, "A B C D | random", "what DATA? gives from now on"},
    {"server fault", parseServerFault, "FAULT", "misbehave from now on; see below"},
    {"server reply", parseServerReply, "COMMAND TEXT|default",
     "answer COMMAND (its first word) with TEXT and a line\n"
     "feed; an empty TEXT is no answer at all"},
    {"server params", parseServerParams, "T L0 L1 L2 L3",
     "its time constant, seconds, and trigger levels, volts"},
    {"application start", [](ScriptLine&) -> Action { return ApplicationSwitch{true}; }, "",
     "start it (again); until it has come up, the panel\n"
     "shows what the last run left"},
    {"application kill", [](ScriptLine&) -> Action { return ApplicationSwitch{false}; }, "",
     "kill it"},
    {"board transfers",
     [](ScriptLine& l) -> Action {
         return BoardTransfers{l.oneOf(QStringLiteral("the state"), QStringLiteral("working"),
                                       QStringLiteral("failing"))};
     },
     "working|failing", "whether SPI messages get through"},
    {"controller identity",
     [](ScriptLine& l) -> Action {
         return ControllerIdentity{l.hexadecimal(QStringLiteral("the identity"))};
     },
     "WORD", "another chip id, hexadecimal"},
    {"controller answering",
     [](ScriptLine& l) -> Action {
         return ControllerAnswering{
             l.oneOf(QStringLiteral("the state"), QStringLiteral("yes"), QStringLiteral("no"))};
     },
     "yes|no", "\"no\": every read gives 0, as without a chip"},
    {"controller coprocessor",
     [](ScriptLine& l) -> Action {
         return CoprocessorStalled{!l.oneOf(QStringLiteral("the state"), QStringLiteral("running"),
                                            QStringLiteral("stalled"))};
     },
     "running|stalled", "\"stalled\": it takes no more commands, as if hung"},
    {"allow complaint", [](ScriptLine& l) -> Action { return AllowComplaint{pattern(l)}; }, "TEXT",
     "a complaint of the controller that is no failure"},
    {"mark", [](ScriptLine&) -> Action { return Mark{}; }, "",
     "requests, log and memory count from here (and from the\nstart)"},
    {"expect text",
     [](ScriptLine& l) -> Action {
         return FrameStep{ExpectText{pattern(l), true}};
     },
     "TEXT", "the frame at hand shows TEXT"},
    {"expect no-text",
     [](ScriptLine& l) -> Action {
         return FrameStep{ExpectText{pattern(l), false}};
     },
     "TEXT", "the frame at hand does not show TEXT"},
    {"expect requests",
     [](ScriptLine& l) -> Action {
         return ExpectRequests{l.rest(QStringLiteral("a request")), false};
     },
     "TEXT...", "the requests since the mark, DATA? left out, are these"},
    {"expect all-requests",
     [](ScriptLine& l) -> Action {
         return ExpectRequests{l.rest(QStringLiteral("a request")), true};
     },
     "TEXT...", "the same with every DATA?"},
    {"expect no-request", [](ScriptLine& l) -> Action { return ExpectNoRequest{pattern(l)}; },
     "TEXT", "no request TEXT since the mark"},
    {"expect log",
     [](ScriptLine& l) -> Action { return ExpectLog{l.rest(QStringLiteral("a line"))}; }, "TEXT...",
     "the lines the application wrote since the mark are these"},
    {"expect register", parseExpectRegister, "NAME VALUE",
     "the controller's register holds VALUE, signed"},
    {"expect memory-growth",
     [](ScriptLine& l) -> Action {
         return ExpectMemoryGrowth{l.integer(QStringLiteral("KILOBYTES"), 0, mostKilobytes)};
     },
     "KILOBYTES", "the application grew by at most this since the mark"},
    {"report", [](ScriptLine&) -> Action { return Report{}; }, "",
     "print SPI messages, bytes, frames, requests, memory"},
    {"end", [](ScriptLine&) -> Action { return End{}; }, "",
     "end the session here instead of after the last line"},
};

QStringList commandNames(const QString& firstWord) {
    QStringList names;
    for (const Command& command : commands) {
        const QString name = QString::fromLatin1(command.name);
        if (firstWord.isEmpty() || name.startsWith(firstWord + ' ')) {
            names += name;
        }
    }
    return names;
}

const Command* findCommand(ScriptLine& line) {
    const QString first = line.word(QStringLiteral("the command"));
    const bool twoWords = !commandNames(first).isEmpty();
    const QString name =
        twoWords ? first + ' ' + line.word(QStringLiteral("the second word of \"%1\"").arg(first))
                 : first;
    const auto found = std::find_if(std::begin(commands), std::end(commands),
                                    [&name](const Command& c) { return name == c.name; });
    if (found == std::end(commands)) {
        line.fail(
            QStringLiteral("there is no command \"%1\"; there is %2")
                .arg(name, commandNames(twoWords ? first : QString()).join(QStringLiteral(", "))));
        return nullptr;
    }
    return found;
}

bool hasLimit(const Action& action) {
    if (const auto* step = std::get_if<FrameStep>(&action)) {
        return !std::holds_alternative<ExpectText>(*step);
    }
    return std::holds_alternative<WaitRequest>(action) || std::holds_alternative<WaitLog>(action) ||
           std::holds_alternative<WaitConnection>(action) ||
           std::holds_alternative<WaitExit>(action) || std::holds_alternative<Finger>(action);
}

// Null and an error in the line when it is not a command.
std::optional<Statement> parseStatement(ScriptLine& line) {
    const auto limit = line.takeLimit();
    const Command* command = findCommand(line);
    if (command == nullptr) {
        return std::nullopt;
    }
    Statement statement;
    statement.action = command->parse(line);
    if (limit && !hasLimit(statement.action)) {
        line.fail(QStringLiteral("\"within\" has no meaning for \"%1\"; leave it out")
                      .arg(QString::fromLatin1(command->name)));
    }
    if (line.error().isEmpty() && !line.atEnd()) {
        line.fail(QStringLiteral("\"%1\" is too much; put texts with blanks in quotation marks")
                      .arg(line.word(QString())));
    }
    statement.limit = limit.value_or(defaultWaitLimit);
    return statement;
}

} // namespace

Script parse(const QString& text, const QString& name) {
    Script script;
    const QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        ScriptLine line(lines[i]);
        if (line.isEmpty()) {
            continue;
        }
        std::optional<Statement> statement = parseStatement(line);
        if (!line.error().isEmpty()) {
            script.error = QStringLiteral("%1:%2: %3").arg(name).arg(i + 1).arg(line.error());
            return script;
        }
        statement->line = i + 1;
        statement->text = lines[i].trimmed();
        script.statements.push_back(*std::move(statement));
    }
    return script;
}

QString help() {
    constexpr int column = 40;
    const QString indent = '\n' + QString(column, ' ');
    QString help;
    for (const Command& command : commands) {
        const QString usage = QStringLiteral("  %1 %2").arg(command.name, command.arguments);
        QString text = QString::fromLatin1(command.help);
        help += usage.leftJustified(column) + text.replace('\n', indent) + '\n';
    }
    return help + QStringLiteral("\n  FAULT is one of\n    %1\n")
                      .arg(server::faultNames().join(QStringLiteral(", ")));
}

} // namespace panel::script
