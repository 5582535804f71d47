#include "measurementserver.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace server {

namespace {

constexpr int lateReplyMs = 100;
// No command comes near this length; a client that sends more without a line feed is lost.
constexpr int longestRequest = 1024; // bytes

std::function<double()> secondsFromNow() {
    QElapsedTimer timer;
    timer.start();
    return [timer] { return static_cast<double>(timer.nsecsElapsed()) * 1e-9; };
}

QString explained(const QTcpServer& server, quint16 port) {
    const QString what = QStringLiteral("cannot listen on 127.0.0.1:%1: ").arg(port);
    if (server.serverError() != QAbstractSocket::AddressInUseError)
        return what + server.errorString();
    return what + QStringLiteral("the port is taken; end the program that holds it "
                                 "(ss -ltnp sport = :%1 shows which one)")
                      .arg(port);
}

QByteArray firstWord(const QByteArray& line) {
    return line.split(' ').first();
}

} // namespace

MeasurementServer::MeasurementServer(std::uint32_t seed, QObject* parent)
    : QObject(parent), m_server(new QTcpServer(this)), m_instrument(seed),
      m_clock(secondsFromNow()) {
    connect(m_server, &QTcpServer::newConnection, this, &MeasurementServer::acceptConnections);
}

// The sockets would otherwise report their end to a half-destroyed object.
MeasurementServer::~MeasurementServer() {
    blockSignals(true);
    close();
}

bool MeasurementServer::listen(quint16 port) {
    const bool listening = m_server->listen(QHostAddress::LocalHost, port);
    m_errorString = listening ? QString() : explained(*m_server, port);
    return listening;
}

void MeasurementServer::close() {
    m_server->close();
    const auto sockets = m_pending.keys();
    for (QTcpSocket* socket : sockets)
        socket->abort();
}

bool MeasurementServer::isListening() const {
    return m_server->isListening();
}

quint16 MeasurementServer::port() const {
    return m_server->serverPort();
}

void MeasurementServer::acceptConnections() {
    while (QTcpSocket* socket = m_server->nextPendingConnection()) {
        m_pending.insert(socket, QByteArray());
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequests(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] { forget(socket); });
        emit connectionsChanged(connectionCount());
    }
}

void MeasurementServer::forget(QTcpSocket* socket) {
    m_pending.remove(socket);
    socket->deleteLater();
    emit connectionsChanged(connectionCount());
}

// Requests may come in pieces or several at once.
void MeasurementServer::readRequests(QTcpSocket* socket) {
    m_pending[socket] += socket->readAll();
    // A request, or whoever is told of it, may end the connection.
    while (m_pending.contains(socket)) {
        QByteArray& pending = m_pending[socket];
        const int end = pending.indexOf('\n');
        if (end < 0 && pending.size() <= longestRequest)
            return;
        const QByteArray line = end < 0 ? pending : pending.left(end);
        pending = end < 0 ? QByteArray() : pending.mid(end + 1);
        handle(socket, line);
    }
}

void MeasurementServer::handle(QTcpSocket* socket, const QByteArray& line) {
    const QByteArray own = m_instrument.answer(line, m_clock());
    emit requestReceived(line);
    if (!m_pending.contains(socket))
        return;
    send(socket, spoiled(m_replies.value(firstWord(line), own), m_fault));
}

void MeasurementServer::send(QTcpSocket* socket, const QByteArray& reply) {
    if (m_fault == Fault::CloseConnection) {
        socket->disconnectFromHost();
        return;
    }
    if (reply.isEmpty() || m_fault == Fault::Silent)
        return;
    if (m_fault == Fault::Late)
        QTimer::singleShot(lateReplyMs, socket, [socket, reply] { socket->write(reply); });
    else
        socket->write(reply);
}

} // namespace server
