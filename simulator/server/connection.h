#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

#include <chrono>

namespace server {

// One client of the server.
//
// A client that has sent all it wants to send may say so (a half-closed connection) and still wait
// for replies, as "printf ... | nc" does. QTcpSocket takes such a client for one that has gone, and
// drops what has not left yet; so the socket is handled here.
class Connection : public QObject {
    Q_OBJECT

public:
    // `descriptor` is a connected stream socket; it is closed by the end of the object.
    explicit Connection(qintptr descriptor, QObject* parent = nullptr);
    ~Connection() override;

    // What has arrived and has not been taken out by the caller yet.
    QByteArray& input() { return m_input; }
    // Nothing more will arrive; replies can still be sent.
    bool inputEnded() const { return m_inputEnded; }

    void send(const QByteArray& bytes);
    // The same after `delay`, or as much later as this process stood still meanwhile: who waits for
    // it on the same machine has had all of that time. Until then the connection does not close by
    // itself.
    void sendLater(const QByteArray& bytes, std::chrono::milliseconds delay);

    // Ends the connection as soon as everything has been sent, also what is due later.
    void closeWhenSent();
    // Ends it at once; what has not been sent is lost.
    void close();
    bool isOpen() const { return m_open; }

signals:
    void arrived(); // input() has grown, or inputEnded()
    void ended();   // once

private:
    void read();
    void sendWhenDue(const QByteArray& bytes, std::chrono::milliseconds delay);
    void flush();
    void closeIfDone();

    const int m_socket;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    QByteArray m_input;
    QByteArray m_output; // not taken by the socket yet
    int m_due = 0;       // replies that will be sent later
    bool m_inputEnded = false;
    bool m_closing = false;
    bool m_open = true;
};

} // namespace server
