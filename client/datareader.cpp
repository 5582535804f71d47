#include "datareader.h"

#include <QDebug>
#include <QHostAddress>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr quint16 serverPort = 9800;
constexpr int connectWaitMs = 10000;
constexpr int replyWaitMs = 50;
constexpr int startAttempts = 2;
constexpr int channelCount = 4;
constexpr double minTimeConst = 0.01; // seconds
constexpr double maxTimeConst = 10.0; // seconds
// From this interval on a poll need not be punctual to the millisecond.
constexpr int coarseTimerFromMs = 2000;
// How often in a row the client polls at once, and what a server that goes on reporting no time
// constant is polled with then: the shortest there is.
constexpr int mostPollsAtOnce = 5;
constexpr int restlessIntervalMs = 10;

const QString paramsCommand = QStringLiteral("PARAMS?\n");
const QString dataCommand = QStringLiteral("DATA?\n");
const QString stopCommand = QStringLiteral("STOP\n");

QString startCommand(double seconds) {
    return QStringLiteral("START %1\n").arg(seconds);
}

// The JSON object in a reply; anything else is logged and gives nothing.
std::optional<QJsonObject> parseObject(const QString& reply) {
    const QJsonDocument document = QJsonDocument::fromJson(reply.toLatin1());
    if (document.isNull()) {
        qDebug() << "Invalid JSON.." << reply;
        return std::nullopt;
    }
    if (!document.isObject()) {
        qDebug() << "Document is not an object";
        return std::nullopt;
    }
    return document.object();
}

// A member that is missing or not a number reads as 0.
double number(const QJsonObject& object, const QString& key) {
    return object.value(key).toDouble();
}

} // namespace

DataReader::DataReader(QObject* parent)
    : QObject(parent), m_socket(new QTcpSocket(this)), m_timer(new QTimer(this)) {
    // A system-wide proxy must never come between the panel and the server on its own board.
    m_socket->setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
}

DataReader::~DataReader() {
    delete m_socket;
}

bool DataReader::isSocketReady() const {
    // Unconnected (0) and bound (4) have neither of the two low bits; all other states have one.
    return m_socket->isOpen() && (m_socket->state() & 3) != 0;
}

bool DataReader::connectToServer() {
    if (!isSocketReady()) {
        m_socket->connectToHost(QHostAddress::LocalHost, serverPort, QIODevice::ReadWrite);
        m_socket->waitForConnected(connectWaitMs);
    }
    return m_socket->state() == QAbstractSocket::ConnectedState;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): part of the class's face.
QString DataReader::tcpIpQuery(QString command, int waitMs, bool* ok) {
    // A connection that is closing still takes the request.
    const bool writable = connectToServer() || m_socket->state() == QAbstractSocket::ClosingState;
    if (!writable) {
        if (ok)
            *ok = false;
        return {};
    }
    m_socket->write(command.toLatin1());
    m_socket->flush();
    const bool answered = m_socket->waitForReadyRead(waitMs);
    if (ok)
        *ok = answered;
    // Without its length, the text ends at the first NUL byte.
    return QString::fromUtf8(m_socket->readAll().constData());
}

void DataReader::updateParams() {
    const auto object = parseObject(tcpIpQuery(paramsCommand, replyWaitMs, nullptr));
    if (!object)
        return;
    m_params.timeConst = number(*object, QStringLiteral("TimeConst"));
    for (int i = 0; i < channelCount; ++i)
        m_params.ref[i] = number(*object, QStringLiteral("Ref%1").arg(i));
    emit paramsUpdated(m_params);
}

void DataReader::updateData() {
    if (m_stopped)
        return;
    if (const auto object = parseObject(tcpIpQuery(dataCommand, replyWaitMs, nullptr))) {
        m_params.timeConst = number(*object, QStringLiteral("TimeConst"));
        for (int i = 0; i < channelCount; ++i)
            m_data.channel[i] = number(*object, QStringLiteral("Channel%1").arg(i));
        emit dataUpdated(m_data);
    }
    armUpdateData();
}

void DataReader::start() {
    updateParams();
    for (int attempt = 0; attempt < startAttempts; ++attempt) {
        bool ok = false;
        const QString reply = tcpIpQuery(startCommand(m_params.timeConst), replyWaitMs, &ok);
        if (ok && reply.contains(QLatin1String("Ok"))) {
            m_stopped = false;
            m_pollsAtOnce = 0;
            qDebug() << "start" << pollIntervalMs();
            armUpdateData();
            return;
        }
    }
}

void DataReader::stop() {
    qDebug() << "stop";
    m_stopped = true;
    m_timer->stop();
    tcpIpQuery(stopCommand, replyWaitMs, nullptr);
}

void DataReader::setTimeConst(double seconds) {
    if (seconds > maxTimeConst)
        seconds = maxTimeConst;
    else if (seconds < minTimeConst)
        seconds = minTimeConst;
    tcpIpQuery(startCommand(seconds), replyWaitMs, nullptr);
    if (m_stopped)
        tcpIpQuery(stopCommand, 0, nullptr);
    m_params.timeConst = seconds;
}

void DataReader::setTriggerLevel(int channel, double level) {
    if (channel < 0 || channel >= channelCount)
        return;
    qDebug() << channel << level;
    tcpIpQuery(QStringLiteral("DAC %1,%2\n").arg(channel).arg(level), replyWaitMs, nullptr);
    updateParams();
}

DataReaderParams DataReader::getParams() const {
    return m_params;
}

void DataReader::closeConnection() {
    m_socket->close();
    m_socket->abort();
}

// The time constant in whole milliseconds, truncated. A server may report anything: what no int
// holds becomes the nearest that one does.
int DataReader::pollIntervalMs() const {
    using Limits = std::numeric_limits<int>;
    const double intervalMs = m_params.timeConst * 1000.0;
    if (std::isnan(intervalMs))
        return 0;
    return static_cast<int>(std::clamp<double>(intervalMs, Limits::lowest(), Limits::max()));
}

// Qt arms nothing for a negative interval, with a warning of its own: the polling ends then, until
// the next start. An interval of 0 is a call at the next pass of the event loop. A server that
// answers quickly and always reports 0 would be polled some ten thousand times a second, at the
// expense of all that runs beside it, so only the first few of such polls come at once.
void DataReader::armUpdateData() {
    int intervalMs = pollIntervalMs();
    m_pollsAtOnce = intervalMs == 0 ? std::min(m_pollsAtOnce + 1, mostPollsAtOnce + 1) : 0;
    if (m_pollsAtOnce > mostPollsAtOnce)
        intervalMs = restlessIntervalMs;
    const Qt::TimerType type = intervalMs >= coarseTimerFromMs ? Qt::CoarseTimer : Qt::PreciseTimer;
    QTimer::singleShot(intervalMs, type, this, &DataReader::updateData);
}
