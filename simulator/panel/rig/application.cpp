#include "application.h"

#include "boundprocess.h"

#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>

#include <cstdio>
#include <cstring>

namespace panel {

QString ProcessEnd::text() const {
    if (!bySignal) {
        return QStringLiteral("exit status %1").arg(code);
    }
    return QStringLiteral("signal %1 (%2)").arg(code).arg(QString::fromLocal8Bit(strsignal(code)));
}

Application::Application(const QString& program, const Launch::Variables& variables,
                         QObject* parent)
    : QObject(parent), m_name(QFileInfo(program).fileName()),
      m_launch(launchOf(program, variables)) {}

Application::~Application() {
    kill();
}

bool Application::start() {
    kill();
    m_lastEnd.reset();
    if (!m_launch.error.isEmpty()) {
        m_error = m_launch.error;
        return false;
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : m_launch.variables) {
        environment.insert(QString::fromStdString(name), QString::fromLocal8Bit(value.c_str()));
    }
    m_process = std::make_unique<BoundProcess>(m_processor);
    m_process->setProcessEnvironment(environment);
    m_process->setInputChannelMode(QProcess::ForwardedInputChannel);
    QObject::connect(m_process.get(), &QProcess::readyReadStandardOutput, this,
                     [this] { passOn(QProcess::StandardOutput); });
    QObject::connect(m_process.get(), &QProcess::readyReadStandardError, this,
                     [this] { passOn(QProcess::StandardError); });
    m_process->start(m_launch.program, m_launch.arguments, QIODevice::ReadOnly);
    if (!m_process->waitForStarted()) {
        m_error =
            QStringLiteral("cannot start %1: %2").arg(m_launch.program, m_process->errorString());
        m_process.reset();
        return false;
    }
    QObject::connect(m_process.get(), qOverload<int, QProcess::ExitStatus>(&QProcess::finished),
                     this, [this](int code, QProcess::ExitStatus status) {
                         passOn(QProcess::StandardOutput);
                         passOn(QProcess::StandardError);
                         m_lastEnd = ProcessEnd{status == QProcess::CrashExit, code};
                         emit ended();
                     });
    return true;
}

void Application::kill() {
    if (!isRunning()) {
        return;
    }
    m_process->disconnect(this);
    m_process->kill();
    m_process->waitForFinished();
    passOn(QProcess::StandardOutput);
    passOn(QProcess::StandardError);
    m_process.reset();
}

bool Application::isRunning() const {
    return m_process && m_process->state() != QProcess::NotRunning;
}

qint64 Application::processId() const {
    return isRunning() ? m_process->processId() : 0;
}

int Application::residentKilobytes() const {
    QFile status(QStringLiteral("/proc/%1/status").arg(processId()));
    if (!isRunning() || !status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QByteArray key = "VmRSS:";
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(key)) {
            return line.mid(key.size()).trimmed().split(' ').first().toInt();
        }
    }
    return 0;
}

void Application::passOn(int channel) {
    const bool isError = channel == QProcess::StandardError;
    m_process->setReadChannel(isError ? QProcess::StandardError : QProcess::StandardOutput);
    FILE* const out = isError ? stderr : stdout;
    const QByteArray name = m_name.toLocal8Bit();
    const bool running = m_process->state() == QProcess::Running;
    while (running ? m_process->canReadLine() : m_process->bytesAvailable() > 0) {
        QByteArray line = m_process->readLine();
        if (line.endsWith('\n')) {
            line.chop(1);
        }
        if (!m_quiet) {
            std::fprintf(out, "%s: %s\n", name.constData(), line.constData());
        }
        emit wrote(QString::fromLocal8Bit(line));
    }
    std::fflush(out);
}

} // namespace panel
