#include "fault.h"

#include "duration.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace server {

namespace {

using std::chrono::milliseconds;

constexpr int hugeReplySize = 1024 * 1024; // bytes
constexpr milliseconds lateReply{100};
constexpr milliseconds betweenPieces{20};
constexpr int garbageSize = 64; // bytes

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

// The one argument that a fault may have; false if it is none.
bool readArgument(const QString& word, FaultRule& rule) {
    bool ok = false;
    switch (rule.fault) {
    case Fault::Late:
    case Fault::Pieces:
        if (const auto delay = durationFromText(word)) {
            rule.delay = *delay;
            ok = true;
        }
        return ok;
    case Fault::CloseConnection:
        rule.number = word.toUInt(&ok);
        return ok && rule.number > 0;
    case Fault::Garbage:
        rule.seed = word.toUInt(&ok);
        return ok;
    default:
        return false;
    }
}

const FaultEntry& entryOf(Fault fault) {
    return faultTable().at(static_cast<std::size_t>(fault));
}

// "for COMMAND" at the end of `words`, taken off them.
QByteArray takeCommand(QStringList& words) {
    const int place = words.size() - 2;
    if (place < 1 || words[place] != QStringLiteral("for"))
        return {};
    QByteArray command = words.last().toUtf8();
    words.erase(words.begin() + place, words.end());
    return command;
}

} // namespace

const std::vector<FaultEntry>& faultTable() {
    static const std::vector<FaultEntry> table{
        {Fault::None, "none", "", "behaves well"},
        {Fault::Silent, "silent", "", "never replies"},
        {Fault::Late, "late", "[TIME]",
         "replies after TIME (100ms), when the panel waits no longer"},
        {Fault::Cut, "cut", "", "sends only the first half of a reply"},
        {Fault::NotJson, "not-json", "", "replies with text that is not JSON"},
        {Fault::NotObject, "not-object", "", "replies with JSON, but an array"},
        {Fault::MissingMembers, "missing-members", "",
         R"(leaves out "TimeConst", "Channel3" and "Ref3")"},
        {Fault::NulByte, "nul-byte", "", "puts a NUL byte into the middle of a reply"},
        {Fault::Huge, "huge", "", "replies with 1 MB of good JSON"},
        {Fault::CloseConnection, "close-connection", "[N]",
         "hangs up instead of replying to the N-th request from now (to each)"},
        {Fault::Pieces, "pieces", "[TIME]", "replies in two pieces, TIME (20ms) apart"},
        {Fault::Hang, "hang", "",
         "takes connections, but looks at no request until the fault is over; then answers all"},
        {Fault::Garbage, "garbage", "[SEED]", "answers everything with 64 random bytes"},
    };
    return table;
}

FaultRule faultRule(Fault fault) {
    FaultRule rule;
    rule.fault = fault;
    rule.delay = fault == Fault::Late ? lateReply : betweenPieces;
    return rule;
}

QStringList faultNames() {
    QStringList names;
    for (const FaultEntry& entry : faultTable())
        names += QString::fromLatin1(entry.name);
    return names;
}

QString faultName(Fault fault) {
    return QString::fromLatin1(entryOf(fault).name);
}

QString faultHelp() {
    constexpr int column = 24;
    QString help;
    for (const FaultEntry& entry : faultTable()) {
        if (entry.fault == Fault::None)
            continue;
        const QString usage = QStringLiteral("  %1 %2").arg(entry.name, entry.arguments);
        help += usage.leftJustified(column) + QString::fromLatin1(entry.help) + '\n';
    }
    return help;
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
    default:
        return reply;
    }
}

std::optional<FaultRule> parseFault(QStringList words, QString* error) {
    const QByteArray command = takeCommand(words);
    const QString name = words.isEmpty() ? QString() : words.takeFirst();
    const auto fault = faultFromName(name);
    if (!fault) {
        *error = QStringLiteral("there is no fault \"%1\"; there is %2")
                     .arg(name, faultNames().join(QStringLiteral(", ")));
        return std::nullopt;
    }
    FaultRule rule = faultRule(*fault);
    rule.command = command;
    const bool good = words.isEmpty() || (words.size() == 1 && readArgument(words.first(), rule));
    if (!good) {
        *error = QStringLiteral("it is written \"%1 [for COMMAND]\", not \"%2\"")
                     .arg(QString(name + ' ' + entryOf(rule.fault).arguments).trimmed(),
                          name + ' ' + words.join(' '));
        return std::nullopt;
    }
    return rule;
}

bool ActiveFault::isAbout(const QByteArray& command) const {
    return m_rule.command.isEmpty() || m_rule.command == command;
}

bool ActiveFault::strikes(const QByteArray& command) {
    if (m_rule.fault == Fault::None || !isAbout(command))
        return false;
    ++m_requests;
    return m_rule.number == 0 || m_rule.number == m_requests;
}

QByteArray ActiveFault::spoil(const QByteArray& reply) {
    if (m_rule.fault != Fault::Garbage)
        return spoiled(reply, m_rule.fault);
    QByteArray bytes(garbageSize, '\0');
    std::generate(bytes.begin(), bytes.end(),
                  [this] { return static_cast<char>(m_random() & 0xFFU); });
    return bytes;
}

} // namespace server
