#include "serverdoor.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace soak {

namespace {

constexpr double shortestTimeConst = 0.01; // that the server takes
constexpr double longestTimeConst = 10.0;

QByteArray json(double timeConst, const QString& key, const FourValues& values) {
    QJsonObject object{{"TimeConst", timeConst}};
    for (int i = 0; i < 4; ++i) {
        object.insert(key + QString::number(i), values[static_cast<std::size_t>(i)]);
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QByteArray usualReply(const QByteArray& line, const server::Params& params,
                      const FourValues& values) {
    if (line == "DATA?") {
        return json(params.timeConst, QStringLiteral("Channel"), values);
    }
    if (line == "PARAMS?") {
        return json(params.timeConst, QStringLiteral("Ref"), params.ref);
    }
    if (line.startsWith("START ")) {
        const double seconds = line.mid(6).toDouble();
        return seconds >= shortestTimeConst && seconds <= longestTimeConst ? "Ok\n" : "Error\n";
    }
    return {}; // STOP and DAC: what they are answered with is not looked at
}

FourValues four(const QJsonObject& object, const QString& key) {
    FourValues values{};
    for (int i = 0; i < 4; ++i) {
        values[static_cast<std::size_t>(i)] = object.value(key + QString::number(i)).toDouble();
    }
    return values;
}

// As the client reads it.
Reply understood(const QByteArray& bytes) {
    Reply reply;
    const QByteArray text = bytes.constData(); // up to a NUL byte
    reply.ok = text.contains("Ok");
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (document.isObject()) {
        const QJsonObject object = document.object();
        reply.object = Reply::Object{object.value(QStringLiteral("TimeConst")).toDouble(),
                                     four(object, QStringLiteral("Ref")),
                                     four(object, QStringLiteral("Channel"))};
    }
    return reply;
}

} // namespace

ServerDoor::ServerDoor(panel::ServerThread& thread, EventQueue& events)
    : m_thread(thread), m_events(events) {
    m_thread.apply([this](server::MeasurementServer& server) {
        connect(
            &server, &server::MeasurementServer::requestReceived, this,
            [this, &server](const QByteArray& line) {
                Event event;
                event.kind = Event::Kind::Request;
                event.request = line.toStdString();
                event.reply = replyTo(line, server.params());
                m_events.add(event);
            },
            Qt::DirectConnection);
    });
}

ServerDoor::~ServerDoor() {
    m_thread.apply([this](server::MeasurementServer& server) { server.disconnect(this); });
}

Reply ServerDoor::replyTo(const QByteArray& line, const server::Params& params) const {
    if (m_condition.fault == server::Fault::Silent) {
        return {};
    }
    const QByteArray own = usualReply(line, params, m_condition.values);
    const QByteArray command = line.split(' ').first();
    return understood(server::spoiled(m_condition.replies.value(command, own), m_condition.fault));
}

void ServerDoor::addStep(Event::Kind kind) {
    Event event;
    event.kind = kind;
    m_events.add(event);
}

void ServerDoor::setValues(const FourValues& values) {
    m_thread.apply([&](server::MeasurementServer& server) {
        m_condition.values = values;
        server.setFixedSample(values);
    });
}

void ServerDoor::setParams(double timeConst, const FourValues& levels) {
    m_thread.apply([&](server::MeasurementServer& server) {
        server.setParams({timeConst, levels});
    });
}

void ServerDoor::setFault(server::Fault fault, bool breaksStep) {
    m_thread.apply([&](server::MeasurementServer& server) {
        if (breaksStep) {
            addStep(Event::Kind::OutOfStep);
        }
        m_condition.fault = fault;
        server.setFault(fault);
    });
}

void ServerDoor::setReply(const QByteArray& command, const QByteArray& reply) {
    m_thread.apply([&](server::MeasurementServer& server) {
        m_condition.replies[command] = reply;
        server.setReply(command, reply);
    });
}

void ServerDoor::clearReply(const QByteArray& command) {
    m_thread.apply([&](server::MeasurementServer& server) {
        m_condition.replies.remove(command);
        server.clearReply(command);
    });
}

void ServerDoor::stop() {
    m_thread.apply([this](server::MeasurementServer&) { addStep(Event::Kind::OutOfStep); });
    m_thread.stop();
}

bool ServerDoor::start() {
    setFault(server::Fault::None, false);
    for (const char* command : {"START", "DATA?", "PARAMS?"}) {
        clearReply(command);
    }
    m_thread.apply([this](server::MeasurementServer&) { addStep(Event::Kind::InStep); });
    return m_thread.start();
}

} // namespace soak
