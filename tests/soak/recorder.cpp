#include "recorder.h"

namespace soak {

namespace {

QString quoted(QString text) {
    text.replace('\\', QLatin1String("\\\\")).replace('"', QLatin1String("\\\""));
    return '"' + text + '"';
}

QString number(double value) {
    return QString::number(value, 'g', 17);
}

QString four(const FourValues& values) {
    QString text;
    for (const double value : values) {
        text += ' ' + number(value);
    }
    return text;
}

QString at(Pixel pixel) {
    return QStringLiteral("%1 %2").arg(pixel.x).arg(pixel.y);
}

QStringList linesOf(const Action& action) {
    const QString text = QString::fromStdString(action.text);
    switch (action.kind) {
    case Action::Kind::Touch:
        return {QStringLiteral("press ") + at(action.pixel)}; // a slide too
    case Action::Kind::Lift:
        return {QStringLiteral("release")};
    case Action::Kind::Values:
        return {QStringLiteral("server values") + four(action.values)};
    case Action::Kind::Params:
        return {QStringLiteral("server params ") + number(action.number) + four(action.values)};
    case Action::Kind::Fault:
        return {QStringLiteral("server fault ") + text};
    case Action::Kind::Reply:
        return {QStringLiteral("server reply %1 %2")
                    .arg(text.section(' ', 0, 0), quoted(text.section(' ', 1)))};
    case Action::Kind::UsualReply:
        return {QStringLiteral("server reply %1 default").arg(text)};
    case Action::Kind::ServerStops:
        return {QStringLiteral("server stop"), QStringLiteral("wait reads 4")};
    case Action::Kind::ServerStarts:
        return {QStringLiteral("server fault none"), QStringLiteral("server reply START default"),
                QStringLiteral("server reply DATA? default"),
                QStringLiteral("server reply PARAMS? default"), QStringLiteral("server start")};
    case Action::Kind::Pause:
        break;
    }
    return {QStringLiteral("wait time %1ms").arg(static_cast<int>(action.number))};
}

} // namespace

void Recorder::start(std::uint32_t seed) {
    m_lines = QStringList{QStringLiteral("# Random touches with the seed %1.").arg(seed)};
}

void Recorder::applicationStarts() {
    m_lines += {QStringLiteral("wait text \"COUNTER MODE\""), QStringLiteral("wait reads 4")};
}

void Recorder::record(const Action& action) {
    m_lines += linesOf(action);
}

QString Recorder::session(const QString& failure, const Violation& violation,
                          const Texts& expected) const {
    QStringList lines = m_lines;
    lines.insert(lines.size() > 0 ? lines.size() - 1 : 0, QStringLiteral("mark"));
    lines += QStringLiteral("# ") + failure;
    if (!violation.missing.empty()) {
        lines += QStringLiteral("wait request %1 within 5s")
                     .arg(quoted(QString::fromStdString(violation.missing)));
    }
    if (!violation.unwanted.empty()) {
        lines += {QStringLiteral("wait time 500ms"),
                  QStringLiteral("expect no-request %1")
                      .arg(quoted(QString::fromStdString(violation.unwanted)))};
    }
    for (const auto& text : expected) {
        if (text && !text->empty()) {
            lines +=
                QStringLiteral("wait text %1 within 5s").arg(quoted(QString::fromStdString(*text)));
        }
    }
    lines += QStringLiteral("screenshot end");
    return lines.join('\n') + '\n';
}

} // namespace soak
