#include "commandline.h"

#include "console.h"
#include "displaymodule.h"
#include "exitstatus.h"
#include "keys.h"
#include "script.h"
#include "scriptline.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QHostAddress>

namespace panel {

namespace {

constexpr int lowestZoom = 1;
constexpr int highestZoom = 4;
constexpr int defaultRemotePort = 5900;
constexpr std::uint32_t pageBefore = 100; // the page's port is as much before

struct Options {
    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")},
                            QStringLiteral("Show this help and end.")};
    QCommandLineOption version{QStringLiteral("version"),
                               QStringLiteral("Show the version and end.")};
    QCommandLineOption app{QStringLiteral("app"),
                           QStringLiteral("The application to run, instead of the frontpanel "
                                          "beside this program."),
                           QStringLiteral("PATH")};
    QCommandLineOption noApp{QStringLiteral("no-app"),
                             QStringLiteral("Start no application, but print the environment in "
                                            "which one finds the board, so that it can be started "
                                            "by hand or in a debugger.")};
    QCommandLineOption generation{QStringLiteral("generation"),
                                  QStringLiteral("Generation of the display controller: 1, 2 or 3 "
                                                 "(default 3). With 1 the application ends by a "
                                                 "failed assertion, with 2 the panel stays "
                                                 "black: both are as the application is made."),
                                  QStringLiteral("N"), QStringLiteral("3")};
    QCommandLineOption boardDevice{
        QStringLiteral("board"),
        QStringLiteral("Instead of showing the application a board, stand at the other end of the "
                       "one that this machine's kernel has: DEVICE is that of the module "
                       "panelboard, /dev/panelboard."),
        QStringLiteral("DEVICE")};
    QCommandLineOption boardFault{
        QStringLiteral("board-fault"),
        QStringLiteral("Build the board with a fault: no-spi-node, no-gpio-export or "
                       "lines-exported (the lines are exported already)."),
        QStringLiteral("FAULT")};
    QCommandLineOption fault{
        QStringLiteral("fault"),
        QStringLiteral("Break something from the start, or \"FAULT after TIME\"; see below. May be "
                       "given more than once."),
        QStringLiteral("FAULT")};
    QCommandLineOption noServer{QStringLiteral("no-server"),
                                QStringLiteral("Leave the measurement server switched off.")};
    QCommandLineOption server{
        QStringLiteral("server"),
        QStringLiteral("Show the panel on a real measurement server: what the application sends to "
                       "port 9800 of this machine goes to HOST:PORT. A server that has that port "
                       "itself needs --no-server instead."),
        QStringLiteral("HOST:PORT")};
    QCommandLineOption answersEverything{
        QStringLiteral("server-answers-everything"),
        QStringLiteral("The measurement server answers STOP and DAC with \"Ok\" too.")};
    QCommandLineOption seed{QStringLiteral("seed"),
                            QStringLiteral("Which pulses the server sees: a whole number "
                                           "(default 1)."),
                            QStringLiteral("N"), QStringLiteral("1")};
    QCommandLineOption headless{QStringLiteral("headless"),
                                QStringLiteral("Do everything without a window. This is the "
                                               "default where there is no display.")};
    QCommandLineOption zoom{QStringLiteral("zoom"),
                            QStringLiteral("Window pixels per panel pixel, 1 to 4 (default 2)."),
                            QStringLiteral("N"), QStringLiteral("2")};
    QCommandLineOption script{QStringLiteral("script"),
                              QStringLiteral("Play a session; see below. \"-\" reads it from the "
                                             "standard input."),
                              QStringLiteral("FILE")};
    QCommandLineOption record{
        QStringLiteral("record"),
        QStringLiteral("Write what you do in the window to FILE, as a script that does it again."),
        QStringLiteral("FILE")};
    QCommandLineOption verbose{QStringLiteral("verbose"),
                               QStringLiteral("Say each line of the script as it is played.")};
    QCommandLineOption timeLimit{QStringLiteral("time-limit"),
                                 QStringLiteral("Longest time for the whole session, such as 90s "
                                                "(default 300s)."),
                                 QStringLiteral("TIME"), QStringLiteral("300s")};
    QCommandLineOption screenshots{
        QStringLiteral("screenshots"),
        QStringLiteral("Directory for screenshots, created if missing "
                       "(default: screenshots, in the working directory)."),
        QStringLiteral("DIR"), QStringLiteral("screenshots")};
    QCommandLineOption compare{
        QStringLiteral("compare"),
        QStringLiteral("Compare each screenshot with DIR/NAME.png, every pixel, instead of keeping "
                       "it. One that differs leaves NAME.actual.png and NAME.difference.png in the "
                       "directory for screenshots."),
        QStringLiteral("DIR")};
    QCommandLineOption renew{QStringLiteral("renew"),
                             QStringLiteral("With --compare: store the screenshots in DIR "
                                            "instead.")};
    QCommandLineOption trace{QStringLiteral("trace"),
                             QStringLiteral("Write to FILE, in the order of time, what crosses the "
                                            "SPI bus, pins, words of the display list, touches, "
                                            "requests and replies, lines of the script."),
                             QStringLiteral("FILE")};
    QCommandLineOption traceFormat{
        QStringLiteral("trace-format"),
        QStringLiteral("\"text\", a line for each of these (the default), or \"vcd\": pins, bytes "
                       "on the bus and how full the ring is, for a viewer of waveforms."),
        QStringLiteral("FORMAT"), QStringLiteral("text")};
    QCommandLineOption statistics{QStringLiteral("stats"),
                                  QStringLiteral("At the end print what crossed the bus, frames, "
                                                 "requests and the application's memory.")};

    QCommandLineOption inspect{
        QStringLiteral("inspect"),
        QStringLiteral("Answer questions on standard input: what has drawn a pixel, what the list, "
                       "registers and memory hold; pause and go on step by step; see below.")};
    QCommandLineOption speed{
        QStringLiteral("speed"),
        QStringLiteral("How fast the panel's time runs beside the clock's, 0.001 to 20 (default "
                       "1)."),
        QStringLiteral("FACTOR"), QStringLiteral("1")};

    QCommandLineOption remote{
        QStringLiteral("remote"),
        QStringLiteral("Show the panel to VNC viewers at PORT (default 5900) and to browsers at "
                       "PORT - 100 (http), where the mouse is the finger; 0 stands for any two "
                       "that are free. Goes with a window or without one."),
        QStringLiteral("PORT")};
    QCommandLineOption remoteAddress{
        QStringLiteral("remote-address"),
        QStringLiteral("With --remote: the address of this machine at which that is to be (default "
                       "127.0.0.1, for this machine alone; 0.0.0.0: all)."),
        QStringLiteral("ADDRESS"), QStringLiteral("127.0.0.1")};
    QCommandLineOption remotePassword{
        QStringLiteral("remote-password"),
        QStringLiteral("With --remote: ask viewers for the password in the first line of FILE. VNC "
                       "knows eight characters of it, and does not hide what is shown."),
        QStringLiteral("FILE")};

    QList<QCommandLineOption> all() const {
        return {help,          version,        app,
                noApp,         generation,     boardDevice,
                boardFault,    noServer,       answersEverything,
                seed,          headless,       zoom,
                script,        timeLimit,      screenshots,
                compare,       renew,          trace,
                traceFormat,   statistics,     inspect,
                speed,         fault,          remote,
                remoteAddress, remotePassword, server,
                verbose,       record};
    }
};

// Takes the values out of the parser, keeping the first mistake.
class Reader {
public:
    Reader(const QCommandLineParser& parser, CommandLine& commandLine)
        : m_parser(parser), m_commandLine(commandLine) {}

    std::uint32_t number(const QCommandLineOption& option, std::uint32_t lowest,
                         std::uint32_t highest) {
        bool ok = false;
        const std::uint32_t value = m_parser.value(option).toUInt(&ok);
        if (!ok || value < lowest || value > highest) {
            fail(QStringLiteral("--%1 takes a whole number from %2 to %3, not \"%4\"")
                     .arg(option.names().last())
                     .arg(lowest)
                     .arg(highest)
                     .arg(m_parser.value(option)));
            return lowest;
        }
        return value;
    }

    std::chrono::milliseconds time(const QCommandLineOption& option) {
        script::ScriptLine line(m_parser.value(option));
        const auto value = line.time("--" + option.names().last());
        if (!line.error().isEmpty()) {
            fail(line.error());
        }
        return value;
    }

    double factor(const QCommandLineOption& option, double lowest, double highest) {
        bool ok = false;
        const double value = m_parser.value(option).toDouble(&ok);
        if (!ok || value < lowest || value > highest) {
            fail(QStringLiteral("--%1 takes a number from %2 to %3, not \"%4\"")
                     .arg(option.names().last())
                     .arg(lowest)
                     .arg(highest)
                     .arg(m_parser.value(option)));
            return 1;
        }
        return value;
    }

    void boardFault(const QCommandLineOption& option, board::Options& options) {
        const QString fault = m_parser.value(option);
        if (fault == QStringLiteral("no-spi-node")) {
            options.spiNode = false;
        } else if (fault == QStringLiteral("no-gpio-export")) {
            options.gpioExport = false;
        } else if (fault == QStringLiteral("lines-exported")) {
            options.linesAlreadyExported = true;
        } else if (m_parser.isSet(option)) {
            fail(QStringLiteral("--board-fault takes no-spi-node, no-gpio-export or "
                                "lines-exported, not \"%1\"")
                     .arg(fault));
        }
    }

    void place(const QCommandLineOption& option, ServerPlace& place) {
        const QString text = m_parser.value(option);
        const int colon = text.lastIndexOf(':');
        bool ok = colon > 0;
        place.port = ok ? text.mid(colon + 1).toUShort(&ok) : quint16{0};
        place.host = text.left(colon);
        if (m_parser.isSet(option) && (!ok || place.port == 0)) {
            fail(QStringLiteral("--server takes HOST:PORT, not \"%1\"").arg(text));
        }
    }

    void faults(const QCommandLineOption& option, std::vector<FaultOrder>& faults) {
        for (const QString& text : m_parser.values(option)) {
            QString error;
            if (const auto order = parseFaultOrder(text.split(' ', Qt::SkipEmptyParts), &error)) {
                faults.push_back(*order);
            } else {
                fail(QStringLiteral("--fault: %1").arg(error));
            }
        }
    }

    void remote(const Options& options, Settings& settings) {
        settings.remoteAddress = m_parser.value(options.remoteAddress);
        settings.remotePassword = m_parser.value(options.remotePassword);
        if (m_parser.isSet(options.remote)) {
            const std::uint32_t port = number(options.remote, 0, UINT16_MAX);
            if (port != 0 && port <= pageBefore) {
                fail(QStringLiteral("--remote takes 0 or a port from %1 on, not \"%2\"")
                         .arg(pageBefore + 1)
                         .arg(port));
            }
            settings.remotePort = static_cast<quint16>(port);
        } else if (m_parser.isSet(options.remoteAddress) ||
                   m_parser.isSet(options.remotePassword)) {
            fail(QStringLiteral("--remote-address and --remote-password go with --remote"));
        }
        if (QHostAddress(settings.remoteAddress).isNull()) {
            fail(QStringLiteral("--remote-address takes an IP address, not \"%1\"")
                     .arg(settings.remoteAddress));
        }
    }

    void fail(const QString& error) {
        if (m_commandLine.error.isEmpty()) {
            m_commandLine.error = error;
        }
    }

private:
    const QCommandLineParser& m_parser;
    CommandLine& m_commandLine;
};

void read(const QCommandLineParser& parser, const Options& options, const QString& directory,
          CommandLine& commandLine) {
    Reader reader(parser, commandLine);
    Settings& settings = commandLine.settings;
    settings.generation =
        static_cast<controller::Generation>(reader.number(options.generation, 1, 3) - 1);
    settings.boardDevice = parser.value(options.boardDevice);
    reader.boardFault(options.boardFault, settings.board);
    if (parser.isSet(options.boardDevice) && parser.isSet(options.boardFault)) {
        reader.fail(QStringLiteral("--board-fault is for boards of panelsim's own, not for the "
                                   "kernel's (--board)"));
    }
    reader.place(options.server, settings.realServer);
    reader.faults(options.fault, settings.faults);
    settings.application = parser.isSet(options.app) ? parser.value(options.app)
                                                     : directory + QStringLiteral("/frontpanel");
    settings.startApplication = !parser.isSet(options.noApp);
    settings.startServer = !parser.isSet(options.noServer);
    settings.serverAnswersEverything = parser.isSet(options.answersEverything);
    settings.seed = reader.number(options.seed, 0, UINT32_MAX);
    settings.headless = parser.isSet(options.headless);
    settings.zoom = static_cast<int>(reader.number(options.zoom, lowestZoom, highestZoom));
    settings.script = parser.value(options.script);
    settings.record = parser.value(options.record);
    settings.verbose = parser.isSet(options.verbose);
    settings.timeLimit = reader.time(options.timeLimit);
    settings.screenshots = parser.value(options.screenshots);
    settings.stored = parser.value(options.compare);
    settings.renew = parser.isSet(options.renew);
    settings.trace = parser.value(options.trace);
    settings.statistics = parser.isSet(options.statistics);
    const QString format = parser.value(options.traceFormat);
    settings.traceIsVcd = format == QStringLiteral("vcd");
    if (!settings.traceIsVcd && format != QStringLiteral("text")) {
        reader.fail(QStringLiteral("--trace-format takes text or vcd, not \"%1\"").arg(format));
    }
    settings.inspect = parser.isSet(options.inspect);
    settings.speed = reader.factor(options.speed, DisplayModule::slowest, DisplayModule::fastest);
    reader.remote(options, settings);
    if (settings.renew && settings.stored.isEmpty()) {
        reader.fail(QStringLiteral("--renew stores the pictures of --compare DIR; give both"));
    }
    if (!settings.record.isEmpty() && (settings.headless || !settings.script.isEmpty())) {
        reader.fail(QStringLiteral("--record writes down what is done in the window by hand; leave "
                                   "out --headless and --script"));
    }
    if (!parser.positionalArguments().isEmpty()) {
        reader.fail(QStringLiteral("\"%1\" is no option; --help lists them")
                        .arg(parser.positionalArguments().first()));
    }
}

// --remote may stand alone, which QCommandLineParser does not know.
QStringList withRemotePort(const QStringList& arguments) {
    QStringList complete;
    for (int i = 0; i < arguments.size(); ++i) {
        complete += arguments[i];
        const QString next = arguments.value(i + 1);
        if (arguments[i] == QStringLiteral("--remote") && (next.isEmpty() || next[0] == '-')) {
            complete += QString::number(defaultRemotePort);
        }
    }
    return complete;
}

} // namespace

CommandLine parseCommandLine(const QStringList& arguments) {
    const Options options;
    QCommandLineParser parser;
    parser.addOptions(options.all());
    CommandLine commandLine;
    if (!parser.parse(withRemotePort(arguments))) {
        commandLine.error = QStringLiteral("%1 --help lists the options.").arg(parser.errorText());
        return commandLine;
    }
    commandLine.wantsHelp = parser.isSet(options.help);
    commandLine.wantsVersion = parser.isSet(options.version);
    read(parser, options, QFileInfo(arguments.first()).absolutePath(), commandLine);
    return commandLine;
}

QString helpText() {
    const Options options;
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "The virtual instrument: runs the unmodified front-panel application on a simulated\n"
        "board with display controller, touch panel and measurement server."));
    parser.addOptions(options.all());
    return parser.helpText() +
           QStringLiteral("\nKeys in the window; the mouse is the finger:\n%1").arg(keyHelp()) +
           QStringLiteral("\nQuestions of --inspect, one a line:\n%1").arg(Console::help()) +
           QStringLiteral("\nCommands of a script, one a line:\n%1").arg(script::help()) +
           QStringLiteral(
               "\n"
               "  TEXT is the whole of what is meant, upper and lower case as they are; a '*' in "
               "it\n"
               "  stands for anything. With blanks or '#' it stands in quotation marks, where \\\" "
               "and\n"
               "  \\\\ stand for \" and \\. A '#' elsewhere begins a comment. PLACE is \"at X Y\", "
               "a "
               "pixel that\n"
               "  the text covers, or \"in X Y WIDTH HEIGHT\", a box in which it stands wholly.\n"
               "  WHERE is \"X Y\", a pixel of the panel, a text that stands there once, in "
               "quotation "
               "marks\n"
               "  and with a PLACE if need be, or \"tag N\" for what carries this tag.\n"
               "  Each wait, touch and screenshot may end with \"within TIME\"; without it, it may "
               "take\n"
               "  30s. Lines that look at frames (wait frames, swaps, reads, text, quiet; expect "
               "text;\n"
               "  screenshot) and follow each other miss no frame between them. After the last "
               "line\n"
               "  the application is killed.\n"
               "\nExit status:\n%1")
               .arg(exitStatusHelp());
}

} // namespace panel
