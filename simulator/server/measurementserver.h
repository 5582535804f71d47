#pragma once

#include "fault.h"
#include "instrument.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QVector>

#include <cstdint>
#include <functional>
#include <map>
#include <utility>

class QTcpServer;

namespace server {

class Connection;

// The measurement server of the virtual instrument: answers docs/protocol.md on 127.0.0.1.
//
// Needs the event loop of the thread that it lives on, and must only be used from that thread. It
// never blocks. A client that blocks while it waits for its replies, as the panel does, must
// therefore live on another thread or in another process.
class MeasurementServer : public QObject {
    Q_OBJECT

public:
    // `seed` decides which pulses the detector will see.
    explicit MeasurementServer(std::uint32_t seed, QObject* parent = nullptr);
    ~MeasurementServer() override;

    // Listens on 127.0.0.1; port 0 takes any free one. False if that is not possible, and
    // errorString() then names the port and what to do.
    bool listen(quint16 port = 9800);
    QString errorString() const { return m_errorString; }
    // Stops listening and drops all connections. The instrument keeps its state; listen() again
    // to go on.
    void close();
    bool isListening() const;
    // The port listened on; 0 while not listening.
    quint16 port() const;
    int connectionCount() const { return m_connections.size(); }

    // The back door of tests and scripts.

    // Answers STOP and DAC with "Ok\n" too.
    void setAnswerEverything(bool on) { m_instrument.setAnswerEverything(on); }
    // DATA? reports these values, whether a run is active or not, until cleared.
    void setFixedSample(const Sample& sample) { m_instrument.setFixedSample(sample); }
    void clearFixedSample() { m_instrument.setFixedSample(std::nullopt); }
    // How replies go wrong from now on: in this way only.
    void setFault(Fault fault) { setFault(faultRule(fault)); }
    void setFault(const FaultRule& rule);
    // The same beside other faults, under a name of the caller's choice, until cleared.
    void addFault(const QString& name, const FaultRule& rule);
    void clearFault(const QString& name);
    // Answers every request whose first word is `command` ("DATA?", "START") with `reply` as it
    // stands, empty for none; the command is carried out all the same. Faults apply on top.
    void setReply(const QByteArray& command, const QByteArray& reply) {
        m_replies[command] = reply;
    }
    void clearReply(const QByteArray& command) { m_replies.remove(command); }
    // Where the time comes from, in seconds; at first the seconds since construction. It only
    // decides whether a sample is complete, not what it holds.
    void setClock(std::function<double()> clock) { m_clock = std::move(clock); }

    bool isRunning() const { return m_instrument.isRunning(); }
    Params params() const { return m_instrument.params(); }
    // Takes any values, also ones that no command could set.
    void setParams(const Params& params) { m_instrument.setParams(params); }

signals:
    // A whole request has arrived, without its line feed; sent before the reply is.
    void requestReceived(QByteArray line);
    // What is sent in answer, perhaps late or in pieces.
    void replied(QByteArray reply);
    void connectionsChanged(int count);
    // The fault of that name does something to this request.
    void faultStruck(QString name, QByteArray request);

private:
    class Listener;
    using Faults = std::map<QString, ActiveFault>;

    void addConnection(qintptr descriptor);
    void forget(Connection* connection);
    void readRequests(Connection* connection);
    void readAllRequests();
    bool hangsAt(const QByteArray& line);
    void handle(Connection* connection, const QByteArray& line);
    void answer(Connection* connection, QByteArray reply, const QVector<ActiveFault*>& faults);

    QTcpServer* m_server; // owned as a child
    QVector<Connection*> m_connections;
    QString m_errorString;
    Instrument m_instrument;
    std::function<double()> m_clock;
    QHash<QByteArray, QByteArray> m_replies;
    Faults m_faults; // by name
    bool m_hung = false;
};

} // namespace server
