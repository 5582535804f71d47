#include "serverthread.h"

namespace panel {

ServerThread::ServerThread(std::uint32_t seed, QObject* parent)
    : QObject(parent), m_server(new server::MeasurementServer(seed)) {
    m_server->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_server, &QObject::deleteLater);
    connect(m_server, &server::MeasurementServer::requestReceived, this,
            [this](const QByteArray& line) { emit requestReceived(QString::fromLatin1(line)); });
    connect(m_server, &server::MeasurementServer::connectionsChanged, this, [this](int count) {
        m_connections = count;
        emit stateChanged();
    });
    m_thread.setObjectName(QStringLiteral("measurement server"));
    m_thread.start();
}

ServerThread::~ServerThread() {
    m_thread.quit();
    m_thread.wait();
}

bool ServerThread::start() {
    apply([this](server::MeasurementServer& server) {
        m_listening = server.isListening() || server.listen();
        m_error = server.errorString();
    });
    emit stateChanged();
    return m_listening;
}

void ServerThread::stop() {
    apply([](server::MeasurementServer& server) { server.close(); });
    m_listening = false;
    emit stateChanged();
}

void ServerThread::apply(const std::function<void(server::MeasurementServer&)>& action) {
    QMetaObject::invokeMethod(
        m_server, [this, &action] { action(*m_server); }, Qt::BlockingQueuedConnection);
}

} // namespace panel
