#include "instrument.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace server {

namespace {

constexpr double minTimeConst = 0.01; // seconds
constexpr double maxTimeConst = 10.0; // seconds
constexpr double maxLevel = 10.0;     // volts, either sign
constexpr double clockStep = 0.001;   // seconds; the panel counts its own time in milliseconds

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
        return start(arguments, now);
    if (command == "DAC")
        return setTriggerLevel(arguments);
    if (line == "STOP")
        return stop();
    if (line == "DATA?")
        return data(now);
    if (line == "PARAMS?")
        return paramsReply();
    return errorReply;
}

QByteArray Instrument::start(const QByteArray& seconds, double now) {
    const auto timeConst = numberWithin(seconds, minTimeConst, maxTimeConst);
    if (!timeConst)
        return errorReply;
    m_params.timeConst = *timeConst;
    m_running = true;
    m_sampleBegan = now;
    return okReply;
}

// The counters keep the last complete sample.
QByteArray Instrument::stop() {
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
    if (m_running && now - m_sampleBegan >= m_params.timeConst - clockStep)
        completeSample(now);
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

void Instrument::completeSample(double now) {
    const double began = m_pulseTime;
    m_pulseTime += std::max(m_params.timeConst, 0.0);
    m_source.runTo(m_pulseTime);
    for (std::size_t i = 0; i < m_sample.size(); ++i)
        m_sample[i] = static_cast<double>(m_source.countAbove(m_params.ref[i], began));
    m_sampleBegan = now;
}

} // namespace server
