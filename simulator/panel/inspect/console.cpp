#include "console.h"

#include <algorithm>

namespace panel {

namespace {

constexpr int mostSteps = 1000;
constexpr int mostBytes = 65536;
constexpr int usualBytes = 64;

// The whole number at a place among the words, `otherwise` where there is none; null: it is none.
std::optional<int> numberAt(const QStringList& words, int at, int lowest, int highest,
                            std::optional<int> otherwise = {}) {
    if (at >= words.size()) {
        return otherwise;
    }
    bool ok = false;
    const int number = words[at].toInt(&ok, 0);
    return ok && number >= lowest && number <= highest ? std::optional(number) : std::nullopt;
}

bool has(const QString& text, const QString& part) {
    return text.contains(part, Qt::CaseInsensitive);
}

bool mentions(const WordReport& word, const QString& text) {
    return has(word.text, text) ||
           std::any_of(word.causes.begin(), word.causes.end(),
                       [&text](const Cause& c) { return has(c.text, text); });
}

} // namespace

const std::vector<Console::Question>& Console::questions() {
    static const std::vector<Question> all{
        {"pixel", "X Y", "what stands there, and what has drawn it, topmost first",
         &Console::pixel},
        {"list", "[TEXT]", "the display list by command; only words of or by TEXT", &Console::list},
        {"registers", "[TEXT]", "their values; only those with TEXT in their name",
         &Console::registers},
        {"memory", "PLACE [N]", "N bytes at PLACE: 0x186A0, RAM_G+100000, REG_ID (default 64)",
         &Console::memory},
        {"pause", "", "let the panel's time stand still: the controller is busy", &Console::pause},
        {"frame", "[N]", "pause, and on to the end of the frame, N times", &Console::frame},
        {"command", "[N]", "pause, and take the next command from the ring, N times",
         &Console::command},
        {"go", "", "on as usual", &Console::go},
        {"speed", "[FACTOR]", "how fast the panel's time runs beside the clock's", &Console::speed},
        {"help", "", "this", &Console::helpLines},
    };
    return all;
}

QString Console::help() {
    QString text;
    for (const Question& question : questions()) {
        text += QStringLiteral("  %1%2\n")
                    .arg(QStringLiteral("%1 %2").arg(question.name, question.arguments), -22)
                    .arg(QString::fromLatin1(question.help));
    }
    return text;
}

QString Console::answer(const QString& line) {
    const QStringList words = line.simplified().split(' ', Qt::SkipEmptyParts);
    if (words.isEmpty() || words.first().startsWith('#')) {
        return {};
    }
    for (const Question& question : questions()) {
        if (words.first() == QLatin1String(question.name)) {
            const QStringList lines = (this->*question.ask)(words.mid(1));
            return lines.isEmpty()
                       ? QStringLiteral("%1 takes %2\n").arg(question.name, question.arguments)
                       : lines.join('\n') + '\n';
        }
    }
    return QStringLiteral("there is no \"%1\"; there is\n%2").arg(words.first(), help());
}

QStringList Console::pixel(const QStringList& words) {
    const auto x = numberAt(words, 0, 0, 4095);
    const auto y = numberAt(words, 1, 0, 4095);
    if (!x || !y || words.size() > 2) {
        return {};
    }
    return linesOf(m_inspector.pixel(*x, *y));
}

QStringList Console::list(const QStringList& words) {
    const QString text = words.join(' ');
    std::vector<WordReport> found;
    for (WordReport& word : m_inspector.list()) {
        if (text.isEmpty() || mentions(word, text)) {
            found.push_back(std::move(word));
        }
    }
    return found.empty() ? QStringList(QStringLiteral("no word of or by \"%1\"").arg(text))
                         : linesOf(found);
}

QStringList Console::registers(const QStringList& words) {
    const QString text = words.join(' ');
    std::vector<RegisterReport> found;
    for (RegisterReport& report : m_inspector.registers()) {
        if (has(report.name, text)) {
            found.push_back(std::move(report));
        }
    }
    return found.empty() ? QStringList(QStringLiteral("no register with \"%1\"").arg(text))
                         : linesOf(found);
}

QStringList Console::memory(const QStringList& words) {
    const auto count = numberAt(words, 1, 1, mostBytes, usualBytes);
    const auto address = words.isEmpty() ? std::nullopt : m_inspector.addressOf(words[0]);
    if (!count || !address || words.size() > 2) {
        return {};
    }
    return QStringList(m_inspector.placeName(*address)) +
           linesOf(*address, m_inspector.memory(*address, static_cast<std::size_t>(*count)));
}

QStringList Console::pause(const QStringList& words) {
    if (!words.isEmpty()) {
        return {};
    }
    m_inspector.module().setPaused(true);
    return {QStringLiteral("paused")};
}

QStringList Console::go(const QStringList& words) {
    if (!words.isEmpty()) {
        return {};
    }
    m_inspector.module().setPaused(false);
    return {QStringLiteral("running")};
}

QStringList Console::frame(const QStringList& words) {
    const auto count = numberAt(words, 0, 1, mostSteps, 1);
    if (!count || words.size() > 1) {
        return {};
    }
    for (int i = 0; i < *count; ++i) {
        m_inspector.module().stepFrame();
    }
    const DisplayModule::Counts counts = m_inspector.module().counts();
    return {QStringLiteral("paused after frame %1, list %2").arg(counts.frames).arg(counts.swaps)};
}

QStringList Console::command(const QStringList& words) {
    const auto count = numberAt(words, 0, 1, mostSteps, 1);
    if (!count || words.size() > 1) {
        return {};
    }
    QStringList taken;
    for (int i = 0; i < *count; ++i) {
        if (!m_inspector.module().stepCommand()) {
            taken +=
                QStringLiteral("none: the ring is empty, or its next command waits for the end "
                               "of the frame");
            break;
        }
        const auto last = m_inspector.lastCommand();
        taken += last ? last->text : QStringLiteral("one that is not known");
    }
    return taken;
}

QStringList Console::speed(const QStringList& words) {
    if (words.size() > 1) {
        return {};
    }
    if (words.size() == 1) {
        bool ok = false;
        const double factor = words[0].toDouble(&ok);
        if (!ok || factor < DisplayModule::slowest || factor > DisplayModule::fastest) {
            return {QStringLiteral("a factor is from %1 to %2")
                        .arg(DisplayModule::slowest)
                        .arg(DisplayModule::fastest)};
        }
        m_inspector.module().setSpeed(factor);
    }
    return {QStringLiteral("%1 times as fast as the clock").arg(m_inspector.module().speed())};
}

QStringList Console::helpLines(const QStringList& /*words*/) {
    return help().split('\n', Qt::SkipEmptyParts);
}

} // namespace panel
