#include "forwarder.h"

#include "porterror.h"

#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>

#include <utility>

namespace server {

Forwarder::Forwarder(QString host, quint16 port, QObject* parent)
    : QObject(parent), m_host(std::move(host)), m_port(port), m_server(new QTcpServer(this)) {
    connect(m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* const client = m_server->nextPendingConnection())
            addClient(client);
    });
}

Forwarder::~Forwarder() {
    blockSignals(true);
    close();
}

bool Forwarder::listen(quint16 port) {
    const bool listening = m_server->listen(QHostAddress::LocalHost, port);
    m_errorString = listening ? QString() : portError(*m_server, port);
    return listening;
}

void Forwarder::close() {
    m_server->close();
    const auto clients = m_remotes.keys();
    for (QTcpSocket* const client : clients)
        client->abort();
}

bool Forwarder::isListening() const {
    return m_server->isListening();
}

quint16 Forwarder::port() const {
    return m_server->serverPort();
}

void Forwarder::addClient(QTcpSocket* client) {
    auto* const remote = new QTcpSocket(client);
    m_remotes.insert(client, remote);
    remote->setProxy(QNetworkProxy::NoProxy);
    for (QTcpSocket* const socket : {client, remote})
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(client, &QTcpSocket::readyRead, this, [this, client] { forward(client); });
    connect(client, &QTcpSocket::disconnected, this, [this, client] { forget(client); });
    connect(remote, &QTcpSocket::readyRead, client,
            [client, remote] { client->write(remote->readAll()); });
    const auto hangUp = [client] { client->disconnectFromHost(); };
    connect(remote, &QTcpSocket::disconnected, client, hangUp);
    connect(remote, &QTcpSocket::errorOccurred, client, hangUp);
    remote->connectToHost(m_host, m_port);
    emit connectionsChanged(connectionCount());
}

// What arrives before the server has been reached waits in its socket.
void Forwarder::forward(QTcpSocket* client) {
    const QByteArray bytes = client->readAll();
    m_remotes.value(client)->write(bytes);
    QByteArray& request = m_requests[client];
    request += bytes;
    for (int end = request.indexOf('\n'); end >= 0; end = request.indexOf('\n')) {
        emit requestReceived(request.left(end));
        request.remove(0, end + 1);
    }
}

void Forwarder::forget(QTcpSocket* client) {
    if (QTcpSocket* const remote = m_remotes.take(client))
        remote->disconnect(client);
    m_requests.remove(client);
    client->deleteLater();
    emit connectionsChanged(connectionCount());
}

} // namespace server
