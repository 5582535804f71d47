#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <stdexcept>

namespace servercheck {

using std::chrono::milliseconds;

// The server cannot be reached, or has closed the connection; what() says which.
class Gone : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What came of a request.
struct Reply {
    QByteArray bytes;      // what had arrived when the first of it was there, as the panel reads
    QByteArray rest;       // what came after that
    milliseconds after{0}; // the request, when the first of it came
    bool came() const { return !bytes.isEmpty(); }
};

// A client that looks closely. Everything blocks; nothing waits without end.
class Probe {
public:
    // Connects. `patience` is how long the panel waits for a reply.
    Probe(const QString& host, quint16 port, milliseconds patience);
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    ~Probe();

    void send(const QByteArray& bytes) const;
    // Sends a request, or several with line feeds between them, and waits for a reply, four times
    // as long as the panel would.
    Reply ask(const QByteArray& request) const;
    // What arrives until nothing has for so long.
    QByteArray listen(milliseconds quiet = whatNobodyAskedFor) const;
    // What arrives until there are so many objects, or nothing has come for four patiences.
    QByteArray objects(int count) const;
    // Nothing more will be sent.
    void halfClose() const;
    // All that comes until the server closes, too; nothing if it does not.
    QByteArray untilClosed(bool* closed) const;

    // How long what should not come is waited for.
    static constexpr milliseconds whatNobodyAskedFor{50};

private:
    bool waitFor(milliseconds time) const;
    QByteArray receive() const;

    int m_socket = -1;
    const milliseconds m_patience;
};

} // namespace servercheck
