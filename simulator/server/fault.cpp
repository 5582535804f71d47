#include "fault.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace server {

namespace {

constexpr int hugeReplySize = 1024 * 1024; // bytes

QByteArray withoutMembers(const QByteArray& reply) {
    QJsonObject object = QJsonDocument::fromJson(reply).object();
    if (object.isEmpty())
        return reply;
    for (const char* member : {"TimeConst", "Channel3", "Ref3"})
        object.remove(QLatin1String(member));
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

// White space in front of a JSON text changes nothing of its meaning.
QByteArray padded(const QByteArray& reply) {
    return QByteArray(hugeReplySize - reply.size(), ' ') + reply;
}

} // namespace

QStringList faultNames() {
    return {"none",       "silent",          "late",     "cut",  "not-json",
            "not-object", "missing-members", "nul-byte", "huge", "close-connection"};
}

std::optional<Fault> faultFromName(const QString& name) {
    const int index = faultNames().indexOf(name);
    if (index < 0)
        return std::nullopt;
    return static_cast<Fault>(index);
}

QByteArray spoiled(const QByteArray& reply, Fault fault) {
    switch (fault) {
    case Fault::Cut:
        return reply.left(reply.size() / 2);
    case Fault::NotJson:
        return QByteArrayLiteral("no JSON today\n");
    case Fault::NotObject:
        return QByteArrayLiteral("[0.5,1,2,3,4]\n");
    case Fault::MissingMembers:
        return withoutMembers(reply);
    case Fault::NulByte:
        return QByteArray(reply).insert(reply.size() / 2, '\0');
    case Fault::Huge:
        return padded(reply);
    case Fault::None:
    case Fault::Silent:
    case Fault::Late:
    case Fault::CloseConnection:
        break;
    }
    return reply;
}

} // namespace server
