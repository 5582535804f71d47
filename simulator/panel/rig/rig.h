#pragma once

#include "application.h"
#include "board.h"
#include "complaints.h"
#include "displaymodule.h"
#include "exitstatus.h"
#include "faults.h"
#include "inspector.h"
#include "linelog.h"
#include "pictures.h"
#include "requestlog.h"
#include "serverthread.h"
#include "settings.h"
#include "trace.h"
#include "userfinger.h"

#include <QObject>
#include <QTimer>

#include <memory>

namespace panel {

// The whole virtual instrument: display module, board, application and measurement server, put
// together and kept going. A window or a session stands on top of it.
class Rig : public QObject {
    Q_OBJECT

public:
    struct Failure {
        ExitStatus status = ExitStatus::Success;
        QString text;
        explicit operator bool() const { return status != ExitStatus::Success; }
    };

    explicit Rig(const Settings& settings);
    ~Rig() override;

    // Sets everything up and starts what the settings ask for. To be called once, before anything
    // below is used; after a failure nothing below may be.
    Failure start();

    DisplayModule& module() { return m_module; }
    UserFinger& finger() { return m_finger; } // for whoever takes touches of a user
    Inspector& inspector() { return m_inspector; }
    board::Board& board() { return *m_board; }
    Application& application() { return *m_application; }
    ServerThread& server() { return m_server; }
    Complaints& complaints() { return m_complaints; }
    Faults& faults() { return m_faults; }
    RequestLog& requests() { return m_requests; }
    LineLog& log() { return m_log; } // what the application has written

    // Requests, log and memory count from here.
    void mark();
    int markedKilobytes() const { return m_markedKilobytes; } // the application's, at the mark

    const PictureStore& pictures() const { return m_pictures; }

    // A line of the trace, if there is one. From any thread.
    void note(TraceEvent event, const QString& text);
    // To be called at the end: a failure when the trace could not be written wholly.
    Failure finishTrace();

    // "name: value" lines: what crossed the bus, frames, requests, the application's memory.
    QString statistics() const;

signals:
    void ticked(); // about every 5 ms, after the model has been brought up to the present
    void complained(const QString& text);     // the first complaint that is not allowed
    void complaintHeard(const QString& text); // each one that is new, allowed or not
    void requestReceived();                   // it is in requests() now

private:
    Failure startTrace();
    void traceRequests();
    Failure startBoard();
    void announceEnvironment() const;
    Faults::Doors faultDoors();

    const Settings m_settings;
    Complaints m_complaints;
    std::unique_ptr<Trace> m_trace;
    DisplayModule m_module;
    UserFinger m_finger;
    Inspector m_inspector{m_module};
    ServerThread m_server;
    Faults m_faults; // the board's wires lead through it
    std::unique_ptr<board::Board> m_board;
    std::unique_ptr<Application> m_application;
    RequestLog m_requests;
    LineLog m_log;
    PictureStore m_pictures;
    int m_markedKilobytes = 0;
    QTimer m_timer;
};

} // namespace panel
