#include "patientsocket.h"

#include "scriptedserver.h"

#include <QTcpSocket>

#include <new>

SocketWaits socketWaits;

namespace {

constexpr int socketPatienceMs = 20000;

// Takes the place of a QTcpSocket, so it has no members of its own.
class PatientSocket : public QTcpSocket {
public:
    using QTcpSocket::connectToHost;
    using QTcpSocket::QTcpSocket;

    void connectToHost(const QString& host, quint16 port, OpenMode mode,
                       NetworkLayerProtocol protocol) override {
        s_sent = 0;
        QTcpSocket::connectToHost(host, port, mode, protocol);
    }

    bool waitForConnected(int msecs) override {
        socketWaits.forConnections.push_back(msecs);
        return QTcpSocket::waitForConnected(msecs);
    }

    bool waitForReadyRead(int msecs) override {
        socketWaits.forReplies.push_back(msecs);
        return QTcpSocket::waitForReadyRead(msecs > 0 ? patient(msecs) : msecs);
    }

protected:
    qint64 writeData(const char* data, qint64 size) override {
        const qint64 written = QTcpSocket::writeData(data, size);
        s_sent += written;
        return written;
    }

private:
    int patient(int msecs) const {
        ScriptedServer* server = ScriptedServer::current();
        if (server == nullptr || state() != ConnectedState)
            return msecs;
        switch (server->reactionTo(localPort(), s_sent)) {
        case ScriptedServer::Reaction::Reply:
            return socketPatienceMs;
        case ScriptedServer::Reaction::Silence:
            return 0;
        case ScriptedServer::Reaction::Unknown:
            break;
        }
        return msecs;
    }

    inline static qint64 s_sent = 0; // over the connection made last
};

static_assert(sizeof(PatientSocket) == sizeof(QTcpSocket));

} // namespace

// QTcpSocket::QTcpSocket(QObject*), as the linker calls it in the code under test.
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier): the linker's --wrap gives the name.
extern "C" void __wrap__ZN10QTcpSocketC1EP7QObject(void* place, QObject* parent) {
    new (place) PatientSocket(parent);
}
