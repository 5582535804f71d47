#pragma once

#include "framesequence.h"
#include "heldtouch.h"
#include "rig.h"
#include "script.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace panel {

namespace script {
struct WaitExit;
}

// Plays a script on a rig, statement by statement.
//
// The first failure ends it, except for pictures that differ: these are all taken first.
class Session : public QObject, private script::Stage {
    Q_OBJECT

public:
    // `rig` has been started.
    Session(script::Script script, std::chrono::milliseconds timeLimit, Rig& rig);
    ~Session() override;

    // `name` stands in front of the line number in messages.
    void setName(const QString& name) { m_name = name; }
    // Each statement is written to standard output when it begins.
    void setVerbose(bool verbose) { m_verbose = verbose; }

    void start();

    // What it is at: "tour.session:12: tap 339 28"; when it is over, that.
    QString progress() const;

signals:
    // Once. `message` is empty after success.
    void ended(panel::ExitStatus status, const QString& message);

private:
    // script::Stage
    Rig& rig() override { return m_rig; }
    HeldTouch& finger() override { return m_finger; }
    bool isFirstCall() const override { return m_firstCall; }
    std::chrono::milliseconds elapsed() const override {
        return std::chrono::milliseconds(m_sinceEntry.elapsed());
    }
    void fail(const QString& why, ExitStatus status = ExitStatus::NotMet) override;
    void keepPicture(const QString& name, const QImage& image,
                     const std::vector<PanelText>& texts) override;
    void endScript() override;
    void playFrames() override;

    const script::Statement& current() const { return m_statements[m_current]; }
    bool isOver() const { return m_over; }
    void play();
    void enterStatement();
    void leaveStatement();
    void checkLimit();
    QString atCurrentLine(const QString& what) const;
    QString failedPictureName(const QString& line) const;
    void fail(const QString& why, ExitStatus status, const QImage& picture);
    QString keepFailedPicture(const QImage& picture) const;
    void end(ExitStatus status, const QString& message);
    void frameStepEnded(const FrameSequence::Event& event);
    void applicationEnded();
    const script::WaitExit* exitAhead() const;

    const std::vector<script::Statement> m_statements;
    QString m_name = QStringLiteral("script");
    Rig& m_rig;
    HeldTouch m_finger;
    FrameSequence m_frames;
    std::size_t m_current = 0;
    std::size_t m_firstFrameStatement = 0; // of the sequence that is being played
    std::size_t m_framesEnd = 0;           // the statement after it
    bool m_entered = false;                // whether the current statement has begun
    bool m_firstCall = false;
    bool m_started = false;
    bool m_verbose = false;
    bool m_over = false;
    QElapsedTimer m_sinceEntry;
    QTimer m_timeLimit;
    QStringList m_pictureFailures;
};

} // namespace panel
