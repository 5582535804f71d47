#pragma once

#include "framesequence.h"
#include "rig.h"
#include "script.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <optional>

namespace panel {

// Plays a script on a rig, statement by statement.
//
// The first failure ends it, except for pictures that differ: these are all taken first.
class Session : public QObject {
    Q_OBJECT

public:
    // `rig` has been started.
    Session(script::Script script, std::chrono::milliseconds timeLimit, Rig& rig);
    ~Session() override;

    // `name` stands in front of the line number in messages.
    void setName(const QString& name) { m_name = name; }

    void start();

signals:
    // Once. `message` is empty after success.
    void ended(panel::ExitStatus status, const QString& message);

private:
    enum class Progress { Done, Waiting };
    class Player; // carries out one action; see session.cpp

    const script::Statement& current() const { return m_statements[m_current]; }
    bool isOver() const { return m_over; }
    void play();
    void leaveStatement();
    void checkLimit();
    void end(ExitStatus status, const QString& message);
    void failStatement(ExitStatus status, const QString& why);
    void endOfScript();

    // Frame statements
    void startFrames();
    void frameStepEnded(const FrameSequence::Event& event);
    void keepPicture(const QString& name, const QImage& image);

    // The finger
    void startNotice();
    bool noticed();
    bool tagRead();

    // The application
    void applicationEnded();
    const script::WaitExit* exitAhead() const;

    const std::vector<script::Statement> m_statements;
    QString m_name = QStringLiteral("script");
    Rig& m_rig;
    FrameSequence m_frames;
    std::size_t m_current = 0;
    std::size_t m_firstFrameStatement = 0; // of the sequence that is being played
    bool m_entered = false;                // whether the current statement has begun
    bool m_started = false;
    bool m_over = false;
    QElapsedTimer m_sinceEntry;
    QTimer m_timeLimit;
    QString m_pictureFailure; // the first

    // What the current Finger statement waits for.
    std::uint32_t m_framesAtTouch = 0;
    std::optional<std::uint32_t> m_readsFrom;
    bool m_tapReleased = false;

    int m_markedKilobytes = 0;
};

} // namespace panel
