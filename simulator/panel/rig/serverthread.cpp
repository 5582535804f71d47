#include "serverthread.h"

#include <sched.h>

namespace panel {

namespace {

// Before everything else on a busy machine, where the system allows that (to root).
void goFirst() {
    sched_param priority{};
    priority.sched_priority = 1;
    sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &priority); // this thread alone
}

} // namespace

ServerThread::ServerThread(std::uint32_t seed, const ServerPlace& real, QObject* parent)
    : QObject(parent), m_server(new server::MeasurementServer(seed)) {
    take(m_server);
    if (real.host.isEmpty()) {
        watch(*m_server);
    } else {
        m_forwarder = new server::Forwarder(real.host, real.port);
        take(m_forwarder);
        watch(*m_forwarder);
    }
    m_thread.setObjectName(QStringLiteral("measurement server"));
    m_thread.start();
    apply([](server::MeasurementServer&) { goFirst(); });
}

void ServerThread::take(QObject* server) {
    server->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, server, &QObject::deleteLater);
}

template<typename Server>
void ServerThread::watch(Server& server) {
    connect(&server, &Server::requestReceived, this,
            [this](const QByteArray& line) { emit requestReceived(QString::fromLatin1(line)); });
    connect(&server, &Server::connectionsChanged, this, [this](int count) {
        m_connections = count;
        emit stateChanged();
    });
}

template<typename Server>
void ServerThread::listenOn(Server& server) {
    m_listening = server.isListening() || server.listen();
    m_error = server.errorString();
}

ServerThread::~ServerThread() {
    m_thread.quit();
    m_thread.wait();
}

bool ServerThread::start() {
    apply([this](server::MeasurementServer& server) {
        if (m_forwarder != nullptr) {
            listenOn(*m_forwarder);
        } else {
            listenOn(server);
        }
    });
    emit stateChanged();
    return m_listening;
}

void ServerThread::stop() {
    apply([this](server::MeasurementServer& server) {
        if (m_forwarder != nullptr) {
            m_forwarder->close();
        }
        server.close();
    });
    m_listening = false;
    emit stateChanged();
}

void ServerThread::shareProcessor(SharedProcessor processor) {
    apply([processor](server::MeasurementServer&) { processor.take(); });
}

void ServerThread::apply(const std::function<void(server::MeasurementServer&)>& action) {
    QMetaObject::invokeMethod(
        m_server, [this, &action] { action(*m_server); }, Qt::BlockingQueuedConnection);
}

} // namespace panel
