#include "scriptedserver.h"

#include "patientsocket.h"

#include <QDeadlineTimer>
#include <QTcpServer>
#include <QTcpSocket>

namespace {

constexpr quint16 port = 9800;
constexpr int requestPatienceMs = 10000;

} // namespace

template<typename Function>
void ScriptedServer::onThread(Function function) {
    QMetaObject::invokeMethod(&m_context, function, Qt::BlockingQueuedConnection);
}

ScriptedServer::ScriptedServer() {
    m_context.moveToThread(&m_thread);
    m_thread.start();
    onThread([this] { listen(); });
    socketWaits = {};
    s_current = this;
}

ScriptedServer::~ScriptedServer() {
    s_current = nullptr;
    onThread([this] { delete m_server; }); // and with it its sockets
    m_thread.quit();
    m_thread.wait();
}

void ScriptedServer::listen() {
    m_server = new QTcpServer;
    QObject::connect(m_server, &QTcpServer::newConnection, &m_context, [this] { accept(); });
    if (!m_server->listen(QHostAddress::LocalHost, port))
        qFatal("cannot listen on port %d: %s", int{port}, qPrintable(m_server->errorString()));
}

void ScriptedServer::accept() {
    m_client = m_server->nextPendingConnection();
    m_clientPort = m_client->peerPort();
    m_received = 0;
    m_pending.clear();
    ++m_connections;
    QObject::connect(m_client, &QTcpSocket::readyRead, &m_context, [this] { read(); });
}

void ScriptedServer::read() {
    const QByteArray arrived = m_client->readAll();
    const int searched = m_pending.size(); // a request may be very long
    m_received += arrived.size();
    m_pending += arrived;
    int end = m_pending.indexOf('\n', searched);
    for (; end >= 0; end = m_pending.indexOf('\n')) {
        const QByteArray request = m_pending.left(end + 1);
        m_pending.remove(0, end + 1);
        m_requests.push_back(request);
        QList<QByteArray>& replies = m_replies[request.left(end).split(' ').constFirst()];
        m_replied = !replies.isEmpty() && !replies.constFirst().isEmpty();
        if (replies.isEmpty())
            continue;
        m_client->write(replies.constFirst());
        if (replies.size() > 1)
            replies.removeFirst();
    }
    m_client->flush();
}

void ScriptedServer::answer(const QByteArray& command, const QList<QByteArray>& replies) {
    onThread([&] { m_replies[command] = replies; });
}

void ScriptedServer::send(const QByteArray& bytes) {
    onThread([&] {
        m_client->write(bytes);
        m_client->flush();
    });
}

void ScriptedServer::hangUp() {
    onThread([this] { m_client->abort(); });
}

void ScriptedServer::setReading(bool on) {
    onThread([&] {
        m_reading = on;
        m_client->setReadBufferSize(on ? 0 : 1);
    });
}

ScriptedServer::Reaction ScriptedServer::reactionTo(quint16 clientPort, qint64 bytes) {
    const QDeadlineTimer deadline(requestPatienceMs);
    while (!deadline.hasExpired()) {
        bool reachable = true;
        bool read = false;
        bool replied = false;
        onThread([&] {
            const bool here = m_client != nullptr && m_clientPort == clientPort;
            reachable = m_reading && (!here || m_client->state() == QTcpSocket::ConnectedState);
            read = here && m_received >= bytes;
            replied = m_replied;
        });
        if (!reachable)
            return Reaction::Unknown;
        if (read)
            return replied ? Reaction::Reply : Reaction::Silence;
        QThread::msleep(1);
    }
    return Reaction::Unknown;
}

std::vector<QByteArray> ScriptedServer::requests() {
    std::vector<QByteArray> all;
    onThread([&] { all = m_requests; });
    return all;
}

std::vector<QByteArray> ScriptedServer::waitForRequests(std::size_t count) {
    const QDeadlineTimer deadline(requestPatienceMs);
    while (requests().size() < count && !deadline.hasExpired())
        QThread::msleep(1);
    return requests();
}

int ScriptedServer::connections() {
    int count = 0;
    onThread([&] { count = m_connections; });
    return count;
}
