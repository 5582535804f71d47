#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>

class QTcpServer;
class QTcpSocket;

namespace server {

// Stands at 127.0.0.1 for a measurement server that is elsewhere: what a client sends goes there,
// what comes back goes to the client. A client whose server cannot be reached is hung up on.
//
// Needs the event loop of the thread that it lives on; never blocks.
class Forwarder : public QObject {
    Q_OBJECT

public:
    Forwarder(QString host, quint16 port, QObject* parent = nullptr);
    ~Forwarder() override;

    // As those of MeasurementServer.
    bool listen(quint16 port = 9800);
    QString errorString() const { return m_errorString; }
    void close();
    bool isListening() const;
    quint16 port() const;
    int connectionCount() const { return m_remotes.size(); }

signals:
    // A whole request has gone to the server, without its line feed.
    void requestReceived(QByteArray line);
    void connectionsChanged(int count);

private:
    void addClient(QTcpSocket* client);
    void forward(QTcpSocket* client);
    void forget(QTcpSocket* client);

    const QString m_host;
    const quint16 m_port;
    QTcpServer* m_server; // owned as a child
    QHash<QTcpSocket*, QTcpSocket*> m_remotes;
    QHash<QTcpSocket*, QByteArray> m_requests; // what has come of the next one
    QString m_errorString;
};

} // namespace server
