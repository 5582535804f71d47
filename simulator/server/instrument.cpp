#include "instrument.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace server {

namespace {

constexpr double minTimeConst = 0.01; // seconds
constexpr double maxTimeConst = 10.0; // seconds
constexpr double maxLevel = 10.0;     // volts, either sign

const QByteArray okReply = QByteArrayLiteral("Ok\n");
const QByteArray errorReply = QByteArrayLiteral("Error\n");

static_assert(PulseSource::memory >= maxTimeConst, "pulses are forgotten before they are counted");

// The number that `text` spells, if it lies between `low` and `high`.
std::optional<double> numberWithin(const QByteArray& text, double low, double high) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !(value >= low && value <= high)) // also not a number
        return std::nullopt;
    return value;
}

// Four values under the keys `prefix`0 to `prefix`3.
void insertFour(QJsonObject* object, const QString& prefix, const std::array<double, 4>& values) {
    for (std::size_t i = 0; i < values.size(); ++i)
        object->insert(prefix + QString::number(i), values[i]);
}

QByteArray line(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

Instrument::Instrument(std::uint32_t seed) : m_source(seed) {}

QByteArray Instrument::answer(const QByteArray& line, double now) {
    const int space = line.indexOf(' ');
    const QByteArray command = space < 0 ? line : line.left(space);
    const QByteArray arguments = space < 0 ? QByteArray() : line.mid(space + 1);
    if (command == "START")
        return start(arguments);
    if (command == "DAC")
        return setTriggerLevel(arguments);
    if (line == "STOP")
        return stop(now);
    if (line == "DATA?")
        return data(now);
    if (line == "PARAMS?")
        return paramsReply();
    return errorReply;
}

QByteArray Instrument::start(const QByteArray& seconds) {
    const auto timeConst = numberWithin(seconds, minTimeConst, maxTimeConst);
    if (!timeConst)
        return errorReply;
    m_params.timeConst = *timeConst;
    m_running = true;
    return okReply;
}

// The counters keep what they hold at this moment.
QByteArray Instrument::stop(double now) {
    if (m_running)
        count(now);
    m_running = false;
    return quietOk();
}

QByteArray Instrument::setTriggerLevel(const QByteArray& arguments) {
    const int comma = arguments.indexOf(',');
    if (comma < 0)
        return errorReply;
    bool ok = false;
    const uint channel = arguments.left(comma).toUInt(&ok);
    const auto level = numberWithin(arguments.mid(comma + 1), -maxLevel, maxLevel);
    if (!ok || channel >= m_params.ref.size() || !level)
        return errorReply;
    m_params.ref[channel] = *level;
    return quietOk();
}

QByteArray Instrument::data(double now) {
    if (m_running)
        count(now);
    QJsonObject object{{"TimeConst", m_params.timeConst}};
    insertFour(&object, "Channel", m_fixedSample.value_or(m_sample));
    return line(object);
}

QByteArray Instrument::paramsReply() const {
    QJsonObject object{{"TimeConst", m_params.timeConst}};
    insertFour(&object, "Ref", m_params.ref);
    return line(object);
}

QByteArray Instrument::quietOk() const {
    return m_answerEverything ? okReply : QByteArray();
}

void Instrument::count(double now) {
    m_source.runTo(now);
    for (std::size_t i = 0; i < m_sample.size(); ++i) {
        const auto pulses = m_source.countAbove(m_params.ref[i], now - m_params.timeConst);
        m_sample[i] = static_cast<double>(pulses);
    }
}

} // namespace server
