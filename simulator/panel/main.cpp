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

// The instrument and what stands on it, for one run of the program.
class Desk {
public:
    explicit Desk(const panel::Settings& settings) : m_settings(settings), m_rig(settings) {}

    // The failure is the user's to mend.
    panel::Rig::Failure start(bool headless);
    void play(const panel::script::Script& script);
    // Until the user, the script or the application has ended it.
    int run();

private:
    panel::Rig::Failure share();
    panel::Rig::Failure openWindow();
    void scriptEnded(ExitStatus status, const QString& message);
    void stop() const { QCoreApplication::exit(static_cast<int>(m_whenStopped)); }

    const panel::Settings& m_settings;
    panel::Rig m_rig;
    std::unique_ptr<panel::Remote> m_remote;
    std::unique_ptr<panel::PanelWindow> m_window; // null: headless
    std::unique_ptr<panel::Session> m_session;
    std::unique_ptr<panel::LineInput> m_questions;
    // With a window: of a script that has failed, whose window the user still looks at.
    ExitStatus m_whenStopped = ExitStatus::Success;
};

panel::Rig::Failure Desk::start(bool headless) {
    if (panel::Rig::Failure failure = m_rig.start()) {
        return failure;
    }
    if (panel::Rig::Failure failure = share()) {
        return failure;
    }
    if (m_settings.startApplication) {
        announceGeneration(m_settings.generation);
    }
    if (!headless) {
        if (panel::Rig::Failure failure = openWindow()) {
            return failure;
        }
    } else if (m_settings.script.isEmpty()) {
        watchHeadless(m_rig);
    }
    if (m_settings.inspect) {
        m_questions = answerQuestions(m_rig);
    }
    return {};
}

// The panel for viewers elsewhere.
panel::Rig::Failure Desk::share() {
    if (!m_settings.remotePort) {
        return {};
    }
    m_remote = std::make_unique<panel::Remote>(m_rig.module());
    panel::Remote::Options options;
    options.address = QHostAddress(m_settings.remoteAddress);
    options.port = *m_settings.remotePort;
    options.passwordFile = m_settings.remotePassword;
    const QString error = m_remote->start(options);
    if (!error.isEmpty()) {
        return {ExitStatus::NotShared, error};
    }
    QObject::connect(m_remote.get(), &panel::Remote::touched, &m_rig,
                     [this](QPoint pixel) { m_rig.finger().touch(pixel); });
    QObject::connect(m_remote.get(), &panel::Remote::released, &m_rig,
                     [this] { m_rig.finger().release(); });
    std::printf("%s\n", qUtf8Printable(m_remote->announcement()));
    std::fflush(stdout);
    if (!m_remote->warning().isEmpty()) {
        std::fprintf(stderr, "panelsim: %s\n", qUtf8Printable(m_remote->warning()));
    }
    return {};
}

panel::Rig::Failure Desk::openWindow() {
    m_window = std::make_unique<panel::PanelWindow>(m_rig, m_settings.zoom);
    QApplication::setQuitOnLastWindowClosed(false); // stop() says with which status
    QObject::connect(m_window.get(), &panel::PanelWindow::closed, &m_rig, [this] { stop(); });
    m_window->show();
    if (m_remote) {
        m_window->messages().showNotice(m_remote->announcement());
    }
    panel::Recorder& recorder = m_window->recorder();
    if (!m_settings.record.isEmpty() &&
        !recorder.start(m_settings.record, m_settings.startApplication)) {
        return {ExitStatus::FileNotWritten, recorder.error()};
    }
    return {};
}

void Desk::play(const panel::script::Script& script) {
    m_whenStopped = ExitStatus::Interrupted;
    m_session = std::make_unique<panel::Session>(script, m_settings.timeLimit, m_rig);
    m_session->setName(nameOf(m_settings.script));
    m_session->setVerbose(m_settings.verbose);
    QObject::connect(
        m_session.get(), &panel::Session::ended, &m_rig,
        [this](ExitStatus status, const QString& message) { scriptEnded(status, message); });
    if (m_window) {
        m_window->followScript([this] { return m_session->progress(); });
    }
    QTimer::singleShot(0, m_session.get(), &panel::Session::start);
}

void Desk::scriptEnded(ExitStatus status, const QString& message) {
    finish(status, message);
    m_whenStopped = status;
    if (m_window && status != ExitStatus::Success) {
        m_window->messages().showProblem(message);
    } else {
        stop();
    }
}

int Desk::run() {
    const panel::StopSignals stopSignals;
    QObject::connect(&stopSignals, &panel::StopSignals::received, &m_rig, [this] { stop(); });
    int status = QCoreApplication::exec();
    if (m_window && !m_window->recorder().stop()) {
        status = finish(ExitStatus::FileNotWritten, m_window->recorder().error());
    }
    if (m_settings.statistics) {
        std::printf("%s", qUtf8Printable(m_rig.statistics()));
    }
    if (const panel::Rig::Failure failure = m_rig.finishTrace()) {
        const int untraced = finish(failure.status, failure.text);
        return status == 0 ? untraced : status;
    }
    return status;
}

int run(const panel::Settings& settings, const panel::script::Script& script, bool headless) {
    Desk desk(settings);
    if (const panel::Rig::Failure failure = desk.start(headless)) {
        return finish(failure.status, failure.text);
    }
    if (!settings.script.isEmpty()) {
        desk.play(script);
    }
    return desk.run();
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
    if (headless && !settings.record.isEmpty()) {
        return finish(ExitStatus::Usage,
                      QStringLiteral("--record writes down what is done in the window; it does not "
                                     "go with --headless, nor without a display"));
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
