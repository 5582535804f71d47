#pragma once

#include "events.h"
#include "fault.h"
#include "serverthread.h"

#include <QByteArray>
#include <QHash>
#include <QObject>

namespace soak {

// Changes the measurement server's mind, and tells of each request what the client will make of
// the reply.
class ServerDoor : public QObject {
    Q_OBJECT

public:
    // Both outlive this object.
    ServerDoor(panel::ServerThread& thread, EventQueue& events);
    ~ServerDoor() override;

    void setValues(const FourValues& values);
    void setParams(double timeConst, const FourValues& levels);
    void setFault(server::Fault fault, bool breaksStep);
    void setReply(const QByteArray& command, const QByteArray& reply);
    void clearReply(const QByteArray& command);
    void stop();
    // In good order, on new connections only. False when the port is taken.
    bool start();

private:
    // What the server now does; lives on the server's thread.
    struct Condition {
        FourValues values{};
        server::Fault fault = server::Fault::None;
        QHash<QByteArray, QByteArray> replies;
    };

    Reply replyTo(const QByteArray& line, const server::Params& params) const;
    void addStep(Event::Kind kind);

    panel::ServerThread& m_thread;
    EventQueue& m_events;
    Condition m_condition;
};

} // namespace soak
