#pragma once

#include "gesture.h"
#include "panelcontent.h"
#include "rig.h"
#include "scriptwriter.h"

#include <QElapsedTimer>
#include <QObject>

#include <mutex>

namespace panel {

// Writes down what a user does with a rig, as a script that does it again: touches by what was
// touched, what he switched, his screenshots; and in front of each, waits for what the panel showed
// and the server was asked since the one before, so that the script holds on a slow machine too.
//
// Waits are for what comes the same every time: requests (for data only that they go on), titles,
// values with a unit, and numbers, which with the same seed are the same; not for numbers that
// change so quickly that a slower machine may not show each of them.
class Recorder : public QObject, private Watcher {
    Q_OBJECT

public:
    explicit Recorder(Rig& rig); // one that has been started
    ~Recorder() override;        // ends the recording

    // False when the file cannot be written; error() says why. `fromStart`: the application has
    // just been started; otherwise the script says that what led here is missing.
    bool start(const QString& path, bool fromStart);
    // False when not all of it has been written; error() says why.
    bool stop();
    bool isRecording() const { return m_writer.isOpen(); }
    QString path() const { return m_writer.path(); }
    QString error() const;

    // What the user does beside touching; does nothing when there is no recording.
    void screenshot(const QString& name);
    void startApplication();           // before it is (re)started
    void command(const QString& line); // such as "server stop"

private:
    void touchTagRead(int tag) override;
    void tickRecording();
    void look();
    void requested(const QString& request);
    void pressed(QPoint pixel);
    void moved(QPoint pixel);
    void lifted();
    void applicationEnded();
    void takeReads();
    bool beginAction();
    void writeLines(const QStringList& lines);
    void writeRequestWaits();
    bool writeTextWaits();
    bool numbersAreSteady() const;
    void writeTextWait(const PanelText& text);
    bool isNew(const PanelText& text) const;
    QStringList numbers() const;

    Rig& m_rig;
    ScriptWriter m_writer;
    Gesture m_gesture;
    QStringList m_requests;         // since the last action
    std::vector<PanelText> m_texts; // on the panel
    QStringList m_textsBefore;      // at the last action
    std::uint32_t m_swapsSeen = 0;
    QElapsedTimer m_sinceRead;
    QElapsedTimer m_sinceNumbers; // have changed
    qint64 m_numbersStood = 0;    // how long those before had, milliseconds

    std::mutex m_readsMutex;
    std::vector<int> m_reads; // tags that have not been looked at
};

} // namespace panel
