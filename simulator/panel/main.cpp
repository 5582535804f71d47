// The virtual instrument: see --help.

#include "commandline.h"
#include "console.h"
#include "displaytest.h"
#include "exitstatus.h"
#include "lineinput.h"
#include "messagebar.h"
#include "panelwindow.h"
#include "remote.h"
#include "rig.h"
#include "script.h"
#include "session.h"
#include "stopsignals.h"

#include <QApplication>
#include <QFile>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <unistd.h>

namespace {

using panel::ExitStatus;

const auto standardInput = QStringLiteral("-"); // in a script's place

int finish(ExitStatus status, const QString& message) {
    if (!message.isEmpty()) {
        std::fprintf(stderr, "panelsim: %s\n", qUtf8Printable(message));
    }
    return static_cast<int>(status);
}

int finishAll(ExitStatus status, const QStringList& messages) {
    for (const QString& message : messages) {
        finish(status, message);
    }
    return static_cast<int>(status);
}

// Before there is an application object, which needs to know.
bool hasDisplay() {
    const char* const variables[] = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
    return std::any_of(std::begin(variables), std::end(variables),
                       [](const char* name) { return !qEnvironmentVariableIsEmpty(name); });
}

// Viewers elsewhere are shown text where there is no picture, which takes fonts, but no display.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char* argv[], bool headless,
                                                  bool remote) {
    if (!headless) {
        return std::make_unique<QApplication>(argc, argv);
    }
    if (!remote) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    qputenv("QT_QPA_PLATFORM", "minimal:enable_fonts");
    return std::make_unique<QGuiApplication>(argc, argv);
}

// For messages.
QString displayName() {
    for (const char* const name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
        if (!qEnvironmentVariableIsEmpty(name)) {
            return QStringLiteral("the display (%1=%2)").arg(name, qEnvironmentVariable(name));
        }
    }
    return QStringLiteral("the display");
}

QStringList argumentList(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments += QString::fromLocal8Bit(argv[i]);
    }
    return arguments;
}

// Of a script, in messages.
QString nameOf(const QString& path) {
    return path == standardInput ? QStringLiteral("standard input") : path;
}

panel::script::Script readScript(const QString& path) {
    QFile file(path);
    const bool isOpen = path == standardInput ? file.open(stdin, QIODevice::ReadOnly)
                                              : file.open(QIODevice::ReadOnly);
    if (!isOpen) {
        panel::script::Script script;
        script.errors +=
            QStringLiteral("cannot read the script %1: %2").arg(path, file.errorString());
        return script;
    }
    return panel::script::parse(QString::fromUtf8(file.readAll()), nameOf(path));
}

// Without window and script there is nobody to restart the application: panelsim ends with it.
void watchHeadless(panel::Rig& rig) {
    std::printf("The instrument runs without a window. Ctrl+C ends it.\n");
    std::fflush(stdout);
    QObject::connect(
        &rig.application(), &panel::Application::ended, QCoreApplication::instance(), [&rig] {
            const panel::ProcessEnd end = *rig.application().lastEnd();
            const QString text = QStringLiteral("the application ended with %1").arg(end.text());
            const bool well = !end.bySignal && end.code == 0;
            QCoreApplication::exit(
                finish(well ? ExitStatus::Success : ExitStatus::ApplicationExited, text));
        });
}

// On standard output, each answer as soon as it is there. The end of the input ends nothing else.
std::unique_ptr<panel::LineInput> answerQuestions(panel::Rig& rig) {
    auto input = std::make_unique<panel::LineInput>(STDIN_FILENO);
    QObject::connect(input.get(), &panel::LineInput::line, input.get(),
                     [console = panel::Console(rig.inspector())](const QString& line) mutable {
                         std::printf("%s", qUtf8Printable(console.answer(line)));
                         std::fflush(stdout);
                     });
    return input;
}

// The panel for viewers elsewhere; the failure is the user's to mend.
panel::Rig::Failure share(const panel::Settings& settings, panel::Rig& rig,
                          std::unique_ptr<panel::Remote>& remote) {
    if (!settings.remotePort) {
        return {};
    }
    remote = std::make_unique<panel::Remote>(rig.module());
    panel::Remote::Options options;
    options.address = QHostAddress(settings.remoteAddress);
    options.port = *settings.remotePort;
    options.passwordFile = settings.remotePassword;
    const QString error = remote->start(options);
    if (!error.isEmpty()) {
        return {ExitStatus::NotShared, error};
    }
    QObject::connect(remote.get(), &panel::Remote::touched, &rig,
                     [&rig](QPoint pixel) { rig.finger().touch(pixel); });
    QObject::connect(remote.get(), &panel::Remote::released, &rig,
                     [&rig] { rig.finger().release(); });
    std::printf("%s\n", qUtf8Printable(remote->announcement()));
    std::fflush(stdout);
    if (!remote->warning().isEmpty()) {
        std::fprintf(stderr, "panelsim: %s\n", qUtf8Printable(remote->warning()));
    }
    return {};
}

// What is to be seen of the two that the application was not made for.
void announceGeneration(controller::Generation generation) {
    if (generation == controller::Generation::E1) {
        std::fprintf(stderr,
                     "panelsim: with generation 1 the application ends by an assertion that "
                     "fails: it draws its logo with a command that this one lacks\n");
    } else if (generation == controller::Generation::E2) {
        std::fprintf(stderr,
                     "panelsim: with generation 2 the panel stays black: the application "
                     "takes it for generation 1 and waits for an identity that never comes\n");
    }
}

int run(const panel::Settings& settings, const panel::script::Script& script, bool headless) {
    panel::Rig rig(settings);
    if (const panel::Rig::Failure failure = rig.start()) {
        return finish(failure.status, failure.text);
    }
    std::unique_ptr<panel::Remote> remote;
    if (const panel::Rig::Failure failure = share(settings, rig, remote)) {
        return finish(failure.status, failure.text);
    }
    if (settings.startApplication) {
        announceGeneration(settings.generation);
    }
    std::unique_ptr<panel::PanelWindow> window;
    if (!headless) {
        window = std::make_unique<panel::PanelWindow>(rig, settings.zoom);
        QApplication::setQuitOnLastWindowClosed(false); // the status is decided below
        window->show();
        if (!settings.record.isEmpty() &&
            !window->recorder().start(settings.record, settings.startApplication)) {
            return finish(ExitStatus::FileNotWritten, window->recorder().error());
        }
        if (remote) {
            window->messages().showNotice(remote->announcement());
        }
    }
    // With a window: of a script that has failed, whose window the user still looks at.
    ExitStatus whenStopped =
        settings.script.isEmpty() ? ExitStatus::Success : ExitStatus::Interrupted;
    std::unique_ptr<panel::Session> session;
    if (!settings.script.isEmpty()) {
        session = std::make_unique<panel::Session>(script, settings.timeLimit, rig);
        session->setName(nameOf(settings.script));
        session->setVerbose(settings.verbose);
        QObject::connect(session.get(), &panel::Session::ended, QCoreApplication::instance(),
                         [&](ExitStatus status, const QString& message) {
                             finish(status, message);
                             whenStopped = status;
                             if (window && status != ExitStatus::Success) {
                                 window->messages().showProblem(message);
                             } else {
                                 QCoreApplication::exit(static_cast<int>(status));
                             }
                         });
        if (window) {
            window->followScript([&session] { return session->progress(); });
        }
        QTimer::singleShot(0, session.get(), &panel::Session::start);
    } else if (headless) {
        watchHeadless(rig);
    }
    std::unique_ptr<panel::LineInput> questions;
    if (settings.inspect) {
        questions = answerQuestions(rig);
    }
    const panel::StopSignals stopSignals;
    QObject::connect(&stopSignals, &panel::StopSignals::received, QCoreApplication::instance(),
                     [&whenStopped] { QCoreApplication::exit(static_cast<int>(whenStopped)); });
    if (window) {
        QObject::connect(window.get(), &panel::PanelWindow::closed, QCoreApplication::instance(),
                         [&whenStopped] { QCoreApplication::exit(static_cast<int>(whenStopped)); });
    }
    int status = QCoreApplication::exec();
    if (window && !window->recorder().stop()) {
        status = finish(ExitStatus::FileNotWritten, window->recorder().error());
    }
    if (settings.statistics) {
        std::printf("%s", qUtf8Printable(rig.statistics()));
    }
    if (const panel::Rig::Failure failure = rig.finishTrace()) {
        const int untraced = finish(failure.status, failure.text);
        return status == 0 ? untraced : status;
    }
    return status;
}

} // namespace

int main(int argc, char* argv[]) {
    panel::StopSignals::block(); // before any thread starts
    const panel::CommandLine commandLine = panel::parseCommandLine(argumentList(argc, argv));
    const panel::Settings& settings = commandLine.settings;
    const bool headless = settings.headless || !hasDisplay();
    const bool saysSomething =
        commandLine.wantsHelp || commandLine.wantsVersion || !commandLine.error.isEmpty();
    if (!headless && !saysSomething && !panel::canOpenDisplay(argc, argv)) {
        return finish(
            ExitStatus::NoDisplay,
            QStringLiteral("cannot open %1; --headless does without a window").arg(displayName()));
    }
    const std::unique_ptr<QCoreApplication> application =
        makeApplication(argc, argv, headless || saysSomething, settings.remotePort.has_value());
    if (commandLine.wantsVersion) {
        std::printf("panelsim %s\n", FRONTPANEL_VERSION);
        return 0;
    }
    if (commandLine.wantsHelp) {
        std::printf("%s", qUtf8Printable(panel::helpText()));
        return 0;
    }
    if (!commandLine.error.isEmpty()) {
        return finish(ExitStatus::Usage, commandLine.error);
    }
    panel::script::Script script;
    if (!settings.script.isEmpty()) {
        script = readScript(settings.script);
        if (!script.errors.isEmpty()) {
            return finishAll(ExitStatus::ScriptError, script.errors);
        }
    }
    return run(settings, script, headless);
}
