#pragma once

#include "datareaderdata.h"
#include "datareaderparams.h"

#include <QObject>
#include <QString>

class QTcpSocket;
class QTimer;

// The panel's only link to the instrument's measurement server: one TCP connection to the IPv4
// loopback address, port 9800, over which one request at a time is written and its reply waited
// for. docs/protocol.md describes the protocol.
//
// Everything runs on the thread that owns the object, which needs an event loop for the polling
// only. Signals are emitted from inside the operation that got the reply.
//
// Blocking: each request holds its caller for at most 50 ms while it waits for the reply, and
// before that for at most 10 000 ms if the connection is down and has to be opened again.
//
// Failures: nothing throws. A server that can't be reached, no reply in time, or a reply that is
// not a JSON object leave the last parameters and the last sample as they are; they are logged at
// debug level and show to the receivers only as a signal that does not come.
//
// A reply that comes after the wait stays in the socket and is returned at the head of the next
// request's reply, deliberately: nothing is drained before a request is written.
class DataReader : public QObject {
    Q_OBJECT

public:
    explicit DataReader(QObject* parent = nullptr);
    ~DataReader() override;

    // True while the socket is open and neither unconnected nor bound. A connection that is still
    // being opened or already closing counts as ready.
    bool isSocketReady() const;

    // Opens the connection unless it is ready; blocks for up to 10 000 ms. True when connected.
    bool connectToServer();

    // Writes `command` (with its line feed) and waits up to `waitMs` milliseconds for an answer.
    // Returns everything that has arrived by then, up to the first NUL byte; empty if nothing has,
    // and null if the server can't be reached, in which case nothing is written. `ok`, unless it
    // is null, tells whether an answer arrived in time.
    QString tcpIpQuery(QString command, int waitMs, bool* ok);

    // Reads the parameters from the server and emits paramsUpdated.
    void updateParams();

    // Starts a measurement run with the time constant that the server reports, and the polling
    // that goes with it; may be connected to a signal. Asks twice before it gives up in silence.
    // Up to 150 ms. A start while a polling step is still pending, also one left over from the run
    // before, adds a second polling chain beside the first.
    void start();

    // Ends the run; may be connected to a signal. Polling ends at its next step. Up to 50 ms.
    void stop();

    // Sets the time constant in seconds, clamped to 0.01 to 10. The protocol has no command of its
    // own for it, so this starts a run on the server, and stops it at once if none was active
    // here. Emits nothing; getParams has the clamped value at once. Up to 50 ms.
    void setTimeConst(double seconds);

    // Sets the trigger level of one channel (0 to 3, others are ignored) in volts and reads the
    // parameters back, which emits paramsUpdated. Up to 100 ms.
    void setTriggerLevel(int channel, double level);

    // The parameters last read from the server or set here; no traffic, never blocks. All zero
    // before the first reply.
    DataReaderParams getParams() const;

    // Drops the connection. The next request opens it again.
    void closeConnection();

signals:
    void paramsUpdated(DataReaderParams params);
    void dataUpdated(DataReaderData);

public slots:
    // One polling step: reads a sample, emits dataUpdated and asks to be called again one time
    // constant later, also when the reply was of no use. Does nothing while no run is active.
    // With a time constant of 0 the next step comes at once, but from the sixth time in a row that
    // the server reports 0, after 10 ms; a negative one ends the polling until the next start.
    void updateData();

private:
    int pollIntervalMs() const;
    void armUpdateData();

    QTcpSocket* m_socket;
    QTimer* m_timer; // never started: polling runs on one-shot timers
    DataReaderParams m_params{};
    DataReaderData m_data{};
    bool m_stopped = true; // no measurement run is active
    int m_pollsAtOnce = 0; // steps in a row that were to come after 0 ms
};
