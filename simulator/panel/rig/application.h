#pragma once

#include "launch.h"
#include "sharedprocessor.h"

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

class QProcess;

namespace panel {

// How a process ended.
struct ProcessEnd {
    bool bySignal = false;
    int code = 0; // the signal, or the exit status

    QString text() const; // "exit status 1", "signal 6 (Aborted)"
};

// The program on the virtual board, run unmodified as a child process (in an emulator, if it is for
// another processor). It never outlives this
// process, however that ends. What it writes comes out on this process's own standard output and
// error, each line with the program's name in front, unless it is kept quiet.
class Application : public QObject {
    Q_OBJECT

public:
    // `variables` make the board visible; they are added to our own environment.
    Application(const QString& program, const Launch::Variables& variables,
                QObject* parent = nullptr);
    ~Application() override; // kills it

    void setQuiet(bool quiet) { m_quiet = quiet; }
    void setProcessor(SharedProcessor processor) { m_processor = processor; } // for the next start

    // Runs it anew; one that is running is killed first. False when it cannot be started; error()
    // then says why.
    bool start();
    // Returns when it is gone; does nothing when it is not running.
    void kill();

    bool isRunning() const;
    // Of the last run; none while it is running, before the first one and after kill().
    std::optional<ProcessEnd> lastEnd() const { return m_lastEnd; }
    qint64 processId() const; // 0 when it is not running
    const Launch& launch() const { return m_launch; }
    QString error() const { return m_error; }

    // Its resident memory, from /proc; 0 when it is not running. In an emulator, with that one's.
    int residentKilobytes() const;

signals:
    void wrote(const QString& line); // without its line feed; also passed on
    void ended();                    // by itself; see lastEnd()

private:
    void passOn(int channel);

    const QString m_name;
    const Launch m_launch;
    std::unique_ptr<QProcess> m_process;
    std::optional<ProcessEnd> m_lastEnd;
    QString m_error;
    bool m_quiet = false;
    SharedProcessor m_processor;
};

} // namespace panel
