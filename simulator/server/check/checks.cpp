#include "checks.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace servercheck {

namespace {

constexpr int channels = 4;
constexpr int manyRequests = 50;
constexpr double levelStep = 1e-3; // volts; what an instrument can set
constexpr double farTooMuch = 1e6; // volts or seconds
const QStringList paramsMembers{"TimeConst", "Ref0", "Ref1", "Ref2", "Ref3"};
const QStringList dataMembers{"TimeConst", "Channel0", "Channel1", "Channel2", "Channel3"};

QString shortened(const QByteArray& bytes) {
    constexpr int longest = 60;
    const QString text = QString::fromLatin1(bytes.left(longest).toPercentEncoding(" {}\":,.?[]"));
    return bytes.size() > longest ? text + "... (" + QString::number(bytes.size()) + " bytes)"
                                  : text;
}

QString lateness(const char* request, const Reply& reply, milliseconds patience) {
    if (!reply.came()) {
        return QStringLiteral("%1 was not answered").arg(request);
    }
    if (reply.after > patience) {
        return QStringLiteral("%1 was answered after %2 ms").arg(request).arg(reply.after.count());
    }
    return {};
}

// What a reply lacks of being a JSON object with these numbers, as the panel reads it.
QString mistakeIn(const char* request, const Reply& reply, const QStringList& members) {
    const QByteArray text = reply.bytes.constData(); // ends at a NUL byte
    const QJsonDocument document = QJsonDocument::fromJson(text);
    const QString answered =
        QStringLiteral("%1 was answered \"%2\"").arg(request, shortened(reply.bytes));
    if (!reply.came()) {
        return QStringLiteral("%1 was not answered").arg(request);
    }
    if (document.isNull()) {
        return answered + ", which is not JSON";
    }
    if (!document.isObject()) {
        return answered + ", which is not an object";
    }
    for (const QString& member : members) {
        if (!document.object().value(member).isDouble()) {
            return answered + QStringLiteral(", where \"%1\" is missing or no number").arg(member);
        }
    }
    return {};
}

// The next object that PARAMS? is answered with, whatever comes before it.
QJsonObject params(const Probe& probe) {
    probe.send("PARAMS?\n");
    const QByteArray replies = probe.objects(1);
    const int begin = replies.indexOf('{');
    return QJsonDocument::fromJson(replies.mid(begin, replies.indexOf('}') + 1 - begin)).object();
}

// What PARAMS? reports of one member; not a number if it does not.
double reported(const Probe& probe, const QString& member) {
    return params(probe).value(member).toDouble(std::nan(""));
}

bool same(double one, double other) {
    return std::abs(one - other) <= 1e-6 * std::max(1.0, std::abs(other));
}

QByteArray number(double value) {
    return QString("%1").arg(value).toLatin1(); // as the panel writes it
}

// Puts back what a check has changed, whatever becomes of it.
class Restored {
public:
    explicit Restored(const Target& target) : m_target(target) {
        const Probe probe(target.host, target.port, target.patience);
        m_timeConst = reported(probe, "TimeConst");
        for (int i = 0; i < channels; ++i) {
            m_levels.push_back(reported(probe, "Ref" + QString::number(i)));
        }
    }
    Restored(const Restored&) = delete;
    Restored& operator=(const Restored&) = delete;
    ~Restored() {
        try {
            const Probe probe(m_target.host, m_target.port, m_target.patience);
            if (!std::isnan(m_timeConst)) {
                probe.send("START " + number(m_timeConst) + "\nSTOP\n");
            }
            for (int i = 0; i < channels; ++i) {
                if (!std::isnan(m_levels[static_cast<std::size_t>(i)])) {
                    probe.send("DAC " + QByteArray::number(i) + ',' +
                               number(m_levels[static_cast<std::size_t>(i)]) + '\n');
                }
            }
            probe.listen();
        } catch (const Gone&) {
            return; // there is nobody to be told
        }
    }

private:
    const Target& m_target;
    double m_timeConst = 0;
    std::vector<double> m_levels;
};

QString checkConnect(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    return {};
}

QString checkGreeting(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    const QByteArray greeting = probe.listen();
    return greeting.isEmpty() ? QString()
                              : QStringLiteral("it sent \"%1\"").arg(shortened(greeting));
}

QString checkInTime(const Target& target) {
    const Restored restored(target);
    const Probe probe(target.host, target.port, target.patience);
    for (const char* const request : {"PARAMS?", "DATA?", "START 0.5"}) {
        QString late = lateness(request, probe.ask(request), target.patience);
        if (!late.isEmpty()) {
            return late;
        }
    }
    probe.send("STOP\n");
    probe.listen();
    return {};
}

QString checkAlwaysInTime(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    milliseconds slowest{0};
    for (int i = 0; i < manyRequests; ++i) {
        const auto start = std::chrono::steady_clock::now();
        probe.send("DATA?\n");
        const QByteArray reply = probe.objects(1);
        const auto took =
            std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
        slowest = std::max(slowest, took);
        if (reply.isEmpty()) {
            return QStringLiteral("DATA? was not answered, the %1th time").arg(i + 1);
        }
    }
    return slowest <= target.patience ? QString()
                                      : QStringLiteral("the slowest of %1 replies took %2 ms")
                                            .arg(manyRequests)
                                            .arg(slowest.count());
}

QString checkOnePiece(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    for (const char* const request : {"PARAMS?", "DATA?"}) {
        const Reply reply = probe.ask(request);
        if (reply.came() && !reply.rest.isEmpty()) {
            return QStringLiteral("%1: after \"%2\" came \"%3\"")
                .arg(request, shortened(reply.bytes), shortened(reply.rest));
        }
    }
    return {};
}

QString checkParams(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    return mistakeIn("PARAMS?", probe.ask("PARAMS?"), paramsMembers);
}

QString checkData(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    return mistakeIn("DATA?", probe.ask("DATA?"), dataMembers);
}

QString checkNulBytes(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    for (const char* const request : {"PARAMS?", "DATA?"}) {
        const Reply reply = probe.ask(request);
        if ((reply.bytes + reply.rest).contains('\0')) {
            return QStringLiteral("there is one in the reply to %1").arg(request);
        }
    }
    return {};
}

QString checkStart(const Target& target) {
    const Restored restored(target);
    const Probe probe(target.host, target.port, target.patience);
    for (const double seconds : {0.5, 0.01, 10.0, 0.25}) { // also during the run
        const QByteArray request = "START " + number(seconds);
        const Reply reply = probe.ask(request);
        if (!reply.bytes.contains("Ok")) {
            return QStringLiteral("%1 was answered \"%2\"")
                .arg(QString(request), shortened(reply.bytes));
        }
        const double now = reported(probe, "TimeConst");
        if (!same(now, seconds)) {
            return QStringLiteral("after %1 PARAMS? reports a time constant of %2")
                .arg(QString(request))
                .arg(now);
        }
    }
    return {};
}

QString checkRun(const Target& target) {
    const Restored restored(target);
    const Probe probe(target.host, target.port, target.patience);
    probe.ask("START 0.1");
    for (int i = 0; i < 3; ++i) {
        probe.listen(milliseconds(100));
        const Reply reply = probe.ask("DATA?");
        QString mistake = mistakeIn("DATA?, in a run,", reply, dataMembers);
        if (!mistake.isEmpty()) {
            return mistake;
        }
        const double timeConst =
            QJsonDocument::fromJson(reply.bytes).object().value("TimeConst").toDouble();
        if (!same(timeConst, 0.1)) {
            return QStringLiteral("DATA?, in a run of 0.1 s, reports a time constant of %1")
                .arg(timeConst);
        }
    }
    return {};
}

QString checkOrderOfCounts(const Target& target) {
    const Restored restored(target);
    const Probe probe(target.host, target.port, target.patience);
    probe.ask("START 0.1");
    probe.listen(milliseconds(150));
    const QByteArray reply = probe.ask("DATA?").bytes;
    const QJsonObject object = QJsonDocument::fromJson(reply).object();
    for (int i = 1; i < channels; ++i) {
        const double before = object.value("Channel" + QString::number(i - 1)).toDouble();
        const double here = object.value("Channel" + QString::number(i)).toDouble();
        if (here > before) {
            return QStringLiteral("Channel%1 is %2, Channel%3 is %4")
                .arg(i - 1)
                .arg(before)
                .arg(i)
                .arg(here);
        }
    }
    return {};
}

QString checkStop(const Target& target) {
    const Restored restored(target);
    const Probe probe(target.host, target.port, target.patience);
    probe.ask("START 0.1");
    for (const char* const when : {"in a run", "without a run"}) {
        probe.send("STOP\n");
        const QByteArray reply = probe.listen();
        if (!reply.isEmpty()) {
            return QStringLiteral("STOP %1 was answered \"%2\"").arg(when, shortened(reply));
        }
    }
    return mistakeIn("PARAMS?, after STOP,", probe.ask("PARAMS?"), paramsMembers);
}

QString checkStartAndStop(const Target& target) {
    const Restored restored(target);
    const Probe probe(target.host, target.port, target.patience);
    const Reply first = probe.ask("START 2\nSTOP");
    const QByteArray reply = first.bytes + first.rest;
    if (reply.count("Ok") != 1) {
        return QStringLiteral("START 2 and STOP together were answered \"%1\"")
            .arg(shortened(reply));
    }
    const double now = reported(probe, "TimeConst");
    return same(now, 2.0) ? QString()
                          : QStringLiteral("then PARAMS? reports a time constant of %1").arg(now);
}

QString checkDac(const Target& target) {
    const Restored restored(target);
    const Probe probe(target.host, target.port, target.patience);
    for (int i = 0; i < channels; ++i) {
        for (const double level : {-0.125, 0.0625 * (i + 1), 1e-5}) {
            const QByteArray request = "DAC " + QByteArray::number(i) + ',' + number(level);
            probe.send(request + '\n');
            const double now = reported(probe, "Ref" + QString::number(i));
            if (!(std::abs(now - level) <= levelStep)) {
                return QStringLiteral("after %1 PARAMS? reports a level of %2")
                    .arg(QString(request))
                    .arg(now);
            }
        }
    }
    return {};
}

QString checkRanges(const Target& target) {
    const Restored restored(target);
    const Probe probe(target.host, target.port, target.patience);
    for (const char* const request :
         {"DAC 0,1e+30", "DAC 0,-1e+30", "DAC 7,0.1", "START 0", "START 1e+30"}) {
        probe.send(QByteArray(request) + '\n');
        const QJsonObject now = params(probe);
        const double timeConst = now.value("TimeConst").toDouble();
        if (std::abs(now.value("Ref0").toDouble()) > farTooMuch || timeConst > farTooMuch ||
            timeConst <= 0) {
            return QStringLiteral("%1 was taken as it is, or nothing was answered").arg(request);
        }
    }
    return {};
}

QString checkPieces(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    probe.send("PAR");
    const QByteArray early = probe.listen();
    if (!early.isEmpty()) {
        return QStringLiteral("half of a request was answered \"%1\"").arg(shortened(early));
    }
    return mistakeIn("PARAMS?, in two pieces,", probe.ask("AMS?"), paramsMembers);
}

QString checkBurst(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    probe.send("PARAMS?\nDATA?\nPARAMS?\n");
    const QByteArray replies = probe.objects(3) + probe.listen();
    const int objects = replies.count('{');
    return objects == 3 ? QString()
                        : QStringLiteral("three requests at once got %1 replies: \"%2\"")
                              .arg(objects)
                              .arg(shortened(replies));
}

QString checkReconnect(const Target& target) {
    const Restored restored(target);
    {
        const Probe first(target.host, target.port, target.patience);
        first.ask("START 3");
        first.send("DATA?\n"); // and does not wait for the reply
    }
    for (int i = 0; i < 3; ++i) {
        const Probe next(target.host, target.port, target.patience);
        const double now = reported(next, "TimeConst");
        if (!same(now, 3.0)) {
            return QStringLiteral("after a START 3 over another connection PARAMS? reports %1")
                .arg(now);
        }
    }
    return {};
}

QString checkUnknown(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    probe.send("NONSENSE 1,2\n\n");
    return params(probe).contains("TimeConst") ? QString()
                                               : QStringLiteral("PARAMS? after it got no object");
}

QString checkHalfClose(const Target& target) {
    const Probe probe(target.host, target.port, target.patience);
    probe.send("PARAMS?\nDATA?\n");
    probe.halfClose();
    bool closed = false;
    const int objects = probe.untilClosed(&closed).count('{');
    if (objects != 2) {
        return QStringLiteral("two requests got %1 replies").arg(objects);
    }
    return closed ? QString() : QStringLiteral("the connection stays open");
}

} // namespace

const std::vector<Check>& allChecks() {
    static const char* const keepsOld =
        "keeps the old values, writes \"Invalid JSON..\" to its log, and asks again in its time";
    static const char* const losesReplies =
        "takes what has arrived for the reply; the rest spoils the reply to the next request";
    static const std::vector<Check> checks{
        {"connect", "the server listens",
         "tries ten times, then shows the error screen and ends with status 1", false,
         checkConnect},
        {"silent-on-connection", "nothing is sent that was not asked for", losesReplies, false,
         checkGreeting},
        {"in-time", "a reply comes within 50 ms",
         "waits no longer: keeps the old values; the late reply spoils the next one, or is taken "
         "for it",
         false, checkInTime},
        {"always-in-time", "each of many replies comes within 50 ms",
         "keeps the old values now and then", false, checkAlwaysInTime},
        {"one-piece", "a reply is written at once", losesReplies, false, checkOnePiece},
        {"no-nul-bytes", "a reply has no NUL bytes", "drops what follows the first one", false,
         checkNulBytes},
        {"params", "PARAMS? is answered by an object with the numbers TimeConst and Ref0 to Ref3",
         "reads as 0 what is missing; keeps the old values where it is no object", false,
         checkParams},
        {"data",
         "DATA? is answered, also without a run, by an object with the numbers TimeConst and "
         "Channel0 to Channel3",
         keepsOld, false, checkData},
        {"start",
         "START takes 0.01 to 10 s, also during a run, with \"Ok\", and PARAMS? reports it",
         "sends START twice, then shows a run and asks for no data", false, checkStart},
        {"run", "in a run DATA? gives the time constant and the counts", keepsOld, false, checkRun},
        {"falling-counts", "with rising trigger levels no channel counts more than the one before",
         "shows a negative number and no bar in the histogram", true, checkOrderOfCounts},
        {"stop", "STOP has no reply, in a run or without",
         "loses the reply to its next request when it does not wait for that of STOP", false,
         checkStop},
        {"start-and-stop", "START and STOP may arrive together; only START has a reply",
         "loses the reply to its next request", false, checkStartAndStop},
        {"dac", "DAC sets the level of channel 0 to 3, and PARAMS? reports it at once",
         "shows the old level", false, checkDac},
        {"ranges", "what is out of range is refused or limited",
         "sends whatever the user types, and shows what PARAMS? reports", true, checkRanges},
        {"requests-in-pieces", "a request may arrive in pieces", "gets no reply, or two", false,
         checkPieces},
        {"requests-in-bursts", "requests may arrive together", "gets too few replies after STOP",
         false, checkBurst},
        {"reconnect", "connections come and go; the instrument's state stays",
         "shows other parameters than it has set", false, checkReconnect},
        {"unknown-command", "a command that is not known harms nothing", "never sends one", true,
         checkUnknown},
        {"half-close", "a client that has sent all it has to send gets its replies",
         "never does it; \"printf ... | nc\" does", true, checkHalfClose},
    };
    return checks;
}

} // namespace servercheck
