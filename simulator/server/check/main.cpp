// Whether a measurement server does what the front panel needs: see --help.

#include "checks.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <algorithm>
#include <optional>

namespace {

using servercheck::Check;
using servercheck::Target;

constexpr int exitDeviations = 1;
constexpr int exitUsage = 2;

struct Options {
    Target target;
    QStringList only;
};

void say(const QString& text) {
    QTextStream(stdout) << text << Qt::endl;
}

void complain(const QString& text) {
    QTextStream(stderr) << "servercheck: " << text << Qt::endl;
}

QString description() {
    QString text = QStringLiteral(
        "Checks whether a measurement server answers as the front panel needs it, as\n"
        "docs/protocol.md describes it. It starts and stops runs and changes time constant and\n"
        "trigger levels, and puts them back. Keep other clients off meanwhile.\n\n"
        "Exit status 0: all is well, advice apart; 1: it deviates; 2: wrong usage.\n\nChecks:\n");
    for (const Check& check : servercheck::allChecks()) {
        text += QStringLiteral("  %1 %2\n").arg(check.name, -22).arg(check.asked);
    }
    return text;
}

bool readPlace(const QString& place, Target& target) {
    const int colon = place.lastIndexOf(':');
    bool ok = colon > 0;
    target.host = place.left(colon);
    target.port = ok ? place.mid(colon + 1).toUShort(&ok) : quint16{0};
    return ok && target.port != 0;
}

// Exits by itself for --help and --version. Nothing if an option or a value is no good.
std::optional<Options> parse() {
    const QCommandLineOption wait("wait", "How long a reply may take, in ms. The panel waits 50.",
                                  "ms", "50");
    const QCommandLineOption only("only", "This check only; may be given more than once.", "check");
    QCommandLineParser parser;
    parser.setApplicationDescription(description());
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({wait, only});
    parser.addPositionalArgument("HOST:PORT", "Where the server is (127.0.0.1:9800).",
                                 "[HOST:PORT]");
    if (!parser.parse(QCoreApplication::arguments())) {
        complain(parser.errorText() + " (--help lists the options)");
        return std::nullopt;
    }
    if (parser.isSet("version")) {
        parser.showVersion();
    }
    if (parser.isSet("help")) {
        parser.showHelp();
    }
    Options options;
    bool waitOk = false;
    options.target.patience = std::chrono::milliseconds(parser.value(wait).toUInt(&waitOk));
    options.only = parser.values(only);
    const QStringList places = parser.positionalArguments();
    const auto& checks = servercheck::allChecks();
    const auto unknown =
        std::find_if(options.only.begin(), options.only.end(), [&checks](const QString& name) {
            return std::none_of(checks.begin(), checks.end(),
                                [&name](const Check& check) { return name == check.name; });
        });
    if (!waitOk || options.target.patience.count() == 0) {
        complain("--wait takes a number of milliseconds, not " + parser.value(wait));
    } else if (unknown != options.only.end()) {
        complain("there is no check " + *unknown + " (--help lists them)");
    } else if (places.size() > 1 || (places.size() == 1 && !readPlace(places[0], options.target))) {
        complain("the server is one HOST:PORT, not " + places.join(' '));
    } else {
        return options;
    }
    return std::nullopt;
}

QString outcomeOf(const Check& check, const Target& target) {
    try {
        return check.run(target);
    } catch (const servercheck::Gone& gone) {
        return QString::fromLocal8Bit(gone.what());
    }
}

void report(const Check& check, const QString& wrong) {
    const QString verdict = wrong.isEmpty() ? "ok" : check.advice ? "advice" : "FAIL";
    say(QStringLiteral("%1 %2 %3").arg(verdict, -6).arg(check.name, -22).arg(wrong).trimmed());
    if (!wrong.isEmpty()) {
        say(QStringLiteral("         asked for: %1").arg(check.asked));
        say(QStringLiteral("         the panel: %1").arg(check.panel));
    }
}

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(FRONTPANEL_VERSION));
    const auto options = parse();
    if (!options) {
        return exitUsage;
    }
    say(QStringLiteral("The measurement server at %1:%2\n")
            .arg(options->target.host)
            .arg(options->target.port));
    int passed = 0;
    int failed = 0;
    int advice = 0;
    for (const Check& check : servercheck::allChecks()) {
        if (!options->only.isEmpty() && !options->only.contains(check.name)) {
            continue;
        }
        const QString wrong = outcomeOf(check, options->target);
        report(check, wrong);
        ++(wrong.isEmpty() ? passed : check.advice ? advice : failed);
        if (!wrong.isEmpty() && QLatin1String(check.name) == QLatin1String("connect")) {
            break; // nor will anything else work
        }
    }
    say(QStringLiteral("\n%1 passed, %2 failed, %3 to think about")
            .arg(passed)
            .arg(failed)
            .arg(advice));
    return failed == 0 ? 0 : exitDeviations;
}
