// Random touches on the application on the virtual instrument: see --help.

#include "soak.h"
#include "stopsignals.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <random>

namespace {

constexpr int couldNotRun = 77; // as test runners have it
constexpr int wrongUse = 2;

// "2m", "30s", "1.5h"; a number alone is hours. Negative: not understood.
double secondsOf(QString text) {
    double factor = 3600;
    if (text.endsWith('s')) {
        factor = 1;
    } else if (text.endsWith('m')) {
        factor = 60;
    }
    if (!text.isEmpty() && !text.back().isDigit()) {
        text.chop(1);
    }
    bool ok = false;
    const double number = text.toDouble(&ok);
    return ok ? number * factor : -1;
}

} // namespace

int main(int argc, char* argv[]) {
    panel::StopSignals::block(); // before any thread starts
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Random touches on the front panel on the virtual instrument, and a server that changes\n"
        "its mind and goes away. Each request and each picture is checked against a model."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("TIME"),
                                 QStringLiteral("How long: 30s, 2m (the default), hours."));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("Repeat what a seed did."),
                                  QStringLiteral("N"));
    const QCommandLineOption app(
        QStringLiteral("app"), QStringLiteral("The application instead of the one beside this."),
        QStringLiteral("PATH"), QCoreApplication::applicationDirPath() + "/frontpanel");
    const QCommandLineOption output(QStringLiteral("output"),
                                    QStringLiteral("Directory for what a failure leaves."),
                                    QStringLiteral("DIR"), QStringLiteral("."));
    parser.addOptions({seed, app, output});
    parser.process(application);

    soak::Options options;
    bool ok = true;
    options.seed =
        parser.isSet(seed) ? parser.value(seed).toUInt(&ok) : std::random_device()() % 1000000;
    const QString time = parser.positionalArguments().value(0, QStringLiteral("2m"));
    if (!ok || secondsOf(time) < 0 || parser.positionalArguments().size() > 1) {
        std::fprintf(stderr, "soak: the time or the seed is not understood; see --help\n");
        return wrongUse;
    }
    options.duration = std::chrono::milliseconds(static_cast<qint64>(secondsOf(time) * 1000));
    options.application = parser.value(app);
    options.output = parser.value(output);

    std::printf("Seed %u.\n", options.seed);
    std::fflush(stdout);
    soak::Soak test(options);
    const panel::StopSignals stopSignals;
    QObject::connect(&stopSignals, &panel::StopSignals::received, &test,
                     [&test] { test.interrupt(); });
    switch (test.run()) {
    case soak::Soak::Result::Passed:
        std::printf("soak: passed, seed %u.\n", options.seed);
        return 0;
    case soak::Soak::Result::CouldNotRun:
        return couldNotRun;
    case soak::Soak::Result::Failed:
        break;
    }
    std::printf("soak: FAILED, seed %u.\n", options.seed);
    return 1;
}
