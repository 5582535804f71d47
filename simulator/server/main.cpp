// The measurement server of the virtual instrument as a program of its own.

#include "measurementserver.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <optional>

namespace {

constexpr int exitPortTaken = 1;
constexpr int exitUsage = 2;

struct Options {
    quint16 port;
    std::uint32_t seed;
    server::FaultRule fault;
    bool answerEverything;
    bool verbose;
};

void say(const QString& text) {
    QTextStream(stdout) << text << Qt::endl;
}

void complain(const QString& text) {
    QTextStream(stderr) << "measurementserver: " << text << Qt::endl;
}

// Exits by itself for --help and --version. Nothing if an option or a value is no good.
std::optional<Options> parse() {
    const QCommandLineOption port(
        "port", "Listen on this TCP port of 127.0.0.1 (0: any free one). The panel uses 9800 only.",
        "number", "9800");
    const QCommandLineOption seed(
        "seed", "Start of the random numbers: the same seed and requests give the same counts.",
        "number", "1");
    const QCommandLineOption fault(
        "fault", "Misbehave in one way; see below. \"late 70ms for DATA?\" is one, too.", "fault",
        "none");
    const QCommandLineOption answerEverything(
        "answer-everything", "Answer STOP and DAC with \"Ok\" too; normally they have no reply.");
    const QCommandLineOption verbose("verbose", "Print each request as it arrives.");

    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Simulated measurement server of the four-channel pulse counter.\n\n"
        "Answers PARAMS?, DATA?, START seconds, STOP and DAC channel,volts, one command a line, "
        "for example:\n  printf 'START 0.5\\nDATA?\\n' | nc -q 1 127.0.0.1 9800\n\n"
        "Runs until it is interrupted. Exit status 1: cannot listen; 2: wrong usage.\n\n"
        "A fault is NAME [ARGUMENT] [for COMMAND], in quotation marks if it has blanks:\n" +
        server::faultHelp());
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({port, seed, fault, answerEverything, verbose});
    if (!parser.parse(QCoreApplication::arguments())) {
        complain(parser.errorText() + " (--help lists the options)");
        return std::nullopt;
    }
    if (parser.isSet("version"))
        parser.showVersion();
    if (parser.isSet("help"))
        parser.showHelp();

    bool portOk = false;
    bool seedOk = false;
    QString faultError;
    const auto chosenFault =
        server::parseFault(parser.value(fault).split(' ', Qt::SkipEmptyParts), &faultError);
    const Options options{parser.value(port).toUShort(&portOk), parser.value(seed).toUInt(&seedOk),
                          chosenFault.value_or(server::FaultRule()), parser.isSet(answerEverything),
                          parser.isSet(verbose)};
    if (!portOk)
        complain("--port takes a number from 0 to 65535, not " + parser.value(port));
    else if (!seedOk)
        complain("--seed takes a number from 0 to 4294967295, not " + parser.value(seed));
    else if (!chosenFault)
        complain("--fault: " + faultError);
    else if (!parser.positionalArguments().isEmpty())
        complain("unexpected argument " + parser.positionalArguments().constFirst());
    else
        return options;
    return std::nullopt;
}

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(FRONTPANEL_VERSION));
    const auto options = parse();
    if (!options)
        return exitUsage;

    server::MeasurementServer server(options->seed);
    server.setFault(options->fault);
    server.setAnswerEverything(options->answerEverything);
    QObject::connect(&server, &server::MeasurementServer::faultStruck,
                     [&options](const QString& /*name*/, const QByteArray& line) {
                         complain("fault " + server::faultName(options->fault.fault) +
                                  " strikes \"" + QString::fromUtf8(line) + '"');
                     });
    if (options->verbose) {
        QObject::connect(
            &server, &server::MeasurementServer::requestReceived,
            [](const QByteArray& line) { say("request: " + QString::fromUtf8(line)); });
        QObject::connect(&server, &server::MeasurementServer::connectionsChanged,
                         [](int count) { say(QStringLiteral("connections: %1").arg(count)); });
    }
    if (!server.listen(options->port)) {
        complain(server.errorString() + ", or choose another port with --port");
        return exitPortTaken;
    }
    say(QStringLiteral("Listening on 127.0.0.1:%1").arg(server.port()));
    return QCoreApplication::exec();
}
