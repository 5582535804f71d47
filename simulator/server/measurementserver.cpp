#include "measurementserver.h"

#include "connection.h"
#include "porterror.h"

#include <QElapsedTimer>
#include <QTcpServer>

#include <algorithm>

namespace server {

namespace {

// No command comes near this length; a client that sends more without a line feed is lost.
constexpr int longestRequest = 1024; // bytes

std::function<double()> secondsFromNow() {
    QElapsedTimer timer;
    timer.start();
    return [timer] { return static_cast<double>(timer.nsecsElapsed()) * 1e-9; };
}

QByteArray firstWord(const QByteArray& line) {
    return line.split(' ').first();
}

// Faults that strike also a command that has no reply.
bool needsNoReply(Fault fault) {
    return fault == Fault::CloseConnection || fault == Fault::Garbage;
}

} // namespace

// Hands on the sockets as they are.
class MeasurementServer::Listener : public QTcpServer {
public:
    explicit Listener(MeasurementServer& server) : QTcpServer(&server), m_server(server) {}

protected:
    void incomingConnection(qintptr descriptor) override { m_server.addConnection(descriptor); }

private:
    MeasurementServer& m_server;
};

MeasurementServer::MeasurementServer(std::uint32_t seed, QObject* parent)
    : QObject(parent), m_server(new Listener(*this)), m_instrument(seed),
      m_clock(secondsFromNow()) {}

// The connections would otherwise report their end to a half-destroyed object.
MeasurementServer::~MeasurementServer() {
    blockSignals(true);
    close();
}

bool MeasurementServer::listen(quint16 port) {
    const bool listening = m_server->listen(QHostAddress::LocalHost, port);
    m_errorString = listening ? QString() : portError(*m_server, port);
    return listening;
}

void MeasurementServer::close() {
    m_server->close();
    const auto connections = m_connections;
    for (Connection* connection : connections)
        connection->close();
}

bool MeasurementServer::isListening() const {
    return m_server->isListening();
}

quint16 MeasurementServer::port() const {
    return m_server->serverPort();
}

void MeasurementServer::setFault(const FaultRule& rule) {
    m_faults.clear();
    addFault(QString(), rule);
}

void MeasurementServer::addFault(const QString& name, const FaultRule& rule) {
    m_faults.erase(name);
    m_faults.emplace(name, ActiveFault(rule));
    readAllRequests();
}

void MeasurementServer::clearFault(const QString& name) {
    m_faults.erase(name);
    readAllRequests();
}

void MeasurementServer::addConnection(qintptr descriptor) {
    auto* const connection = new Connection(descriptor, this);
    m_connections.append(connection);
    connect(connection, &Connection::arrived, this,
            [this, connection] { readRequests(connection); });
    connect(connection, &Connection::ended, this, [this, connection] { forget(connection); });
    emit connectionsChanged(connectionCount());
}

void MeasurementServer::forget(Connection* connection) {
    m_connections.removeOne(connection);
    connection->deleteLater();
    emit connectionsChanged(connectionCount());
}

// What a fault that has ended now has held up.
void MeasurementServer::readAllRequests() {
    m_hung = false;
    const auto connections = m_connections;
    for (Connection* connection : connections)
        readRequests(connection);
}

// Requests may come in pieces or several at once.
void MeasurementServer::readRequests(Connection* connection) {
    // A request, or whoever is told of it, may end the connection.
    while (connection->isOpen() && !m_hung) {
        QByteArray& input = connection->input();
        const int end = input.indexOf('\n');
        if (end < 0 && input.size() <= longestRequest)
            break;
        const QByteArray line = end < 0 ? input : input.left(end);
        if (hangsAt(line))
            return;
        input = end < 0 ? QByteArray() : input.mid(end + 1);
        handle(connection, line);
    }
    if (connection->inputEnded() && !m_hung)
        connection->closeWhenSent();
}

bool MeasurementServer::hangsAt(const QByteArray& line) {
    for (auto& [name, fault] : m_faults) {
        if (fault.rule().fault == Fault::Hang && fault.isAbout(firstWord(line))) {
            m_hung = true;
            emit faultStruck(name, line);
        }
    }
    return m_hung;
}

void MeasurementServer::handle(Connection* connection, const QByteArray& line) {
    const QByteArray command = firstWord(line);
    const QByteArray own = m_instrument.answer(line, m_clock());
    emit requestReceived(line);
    if (!connection->isOpen())
        return;
    const QByteArray reply = m_replies.value(command, own);
    QVector<ActiveFault*> striking;
    for (auto& [name, fault] : m_faults) {
        if (fault.strikes(command) && (!reply.isEmpty() || needsNoReply(fault.rule().fault))) {
            striking.append(&fault);
            emit faultStruck(name, line);
        }
    }
    answer(connection, reply, striking);
}

void MeasurementServer::answer(Connection* connection, QByteArray reply,
                               const QVector<ActiveFault*>& faults) {
    const auto rule = [&faults](Fault kind) {
        const auto it =
            std::find_if(faults.begin(), faults.end(),
                         [kind](const ActiveFault* fault) { return fault->rule().fault == kind; });
        return it == faults.end() ? nullptr : &(*it)->rule();
    };
    for (ActiveFault* fault : faults)
        reply = fault->spoil(reply);
    if (rule(Fault::CloseConnection) != nullptr)
        return connection->closeWhenSent();
    if (reply.isEmpty() || rule(Fault::Silent) != nullptr)
        return;
    emit replied(reply);
    const FaultRule* const late = rule(Fault::Late);
    const FaultRule* const pieces = rule(Fault::Pieces);
    const auto delay = late != nullptr ? late->delay : std::chrono::milliseconds(0);
    if (pieces != nullptr) {
        const int half = reply.size() / 2;
        connection->sendLater(reply.mid(half), delay + pieces->delay);
        reply.truncate(half);
    }
    if (late != nullptr)
        connection->sendLater(reply, delay);
    else
        connection->send(reply);
}

} // namespace server
