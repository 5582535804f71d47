#include "inspector.h"

#include "commandtext.h"
#include "memorylayout.h"
#include "names.h"
#include "registers.h"
#include "textpattern.h"

#include <algorithm>

namespace panel {

namespace {

constexpr std::uint32_t rgbBits = 0x00FFFFFF;
constexpr double nanosecondsPerSecond = 1e9;

QString fromLatin1(const std::string& text) {
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

bool jumps(const controller::DisplayList& list) {
    return std::any_of(list.begin(), list.end(), [](std::uint32_t word) {
        return word >> 24 == controller::opcode::Call || word >> 24 == controller::opcode::Jump;
    });
}

// How many words of a list are worth a look.
std::size_t lengthOf(const controller::DisplayList& list) {
    if (!jumps(list)) {
        const auto display = std::find(list.begin(), list.end(), 0U);
        return std::min<std::size_t>(static_cast<std::size_t>(display - list.begin()) + 1,
                                     list.size());
    }
    const auto last =
        std::find_if(list.rbegin(), list.rend(), [](std::uint32_t word) { return word != 0; });
    return std::min<std::size_t>(static_cast<std::size_t>(list.rend() - last) + 1, list.size());
}

} // namespace

std::vector<std::size_t> StepReport::indices() const {
    std::vector<std::size_t> indices;
    for (const WordReport& word : words) {
        const bool isBegin = word.word >> 24 == controller::opcode::Begin;
        if (!isBegin) {
            indices.push_back(word.index);
        }
    }
    return indices;
}

const StepReport* PixelReport::top() const {
    const auto found =
        std::find_if(steps.rbegin(), steps.rend(), [](const StepReport& s) { return s.colours; });
    return found == steps.rend() ? nullptr : &*found;
}

Inspector::Inspector(DisplayModule& module)
    : m_module(module), m_generation(module.locked([](const controller::Controller& controller) {
          return controller.generation();
      })),
      m_ledger(m_generation) {
    m_module.addObserver(&m_ledger);
}

Inspector::~Inspector() {
    m_module.removeObserver(&m_ledger);
}

// --- causes

Cause Inspector::causeOf(const Deed& deed) const {
    Cause cause;
    cause.number = deed.number;
    if (!deed.command) {
        cause.text = QStringLiteral("written by the host");
    } else if (deed.command->info == nullptr) {
        cause.text =
            fromLatin1(controller::displayListWordText(m_generation, deed.command->words.front()));
    } else {
        const controller::RingCommand& command = *deed.command;
        cause.text =
            fromLatin1(controller::commandText(m_generation, *command.info, command.words));
        if (command.info->trailer == controller::Trailer::Text) {
            cause.text += QStringLiteral(" \"%1\"").arg(fromLatin1(command.text));
        }
    }
    QStringList transactions;
    for (const TransactionNote& note : deed.transactions) {
        QString text = QStringLiteral("transaction %1 at %2 s, W %3")
                           .arg(note.number)
                           .arg(static_cast<double>(note.start) / nanosecondsPerSecond, 0, 'f', 6)
                           .arg(placeName(note.address));
        if (note.bytes > 0) {
            text += QStringLiteral(", %1 bytes").arg(note.bytes);
        }
        transactions += text;
    }
    cause.transactions = transactions.join(QStringLiteral("; "));
    return cause;
}

std::optional<Cause> Inspector::lastCommand() const {
    return m_module.locked([this](const controller::Controller&) -> std::optional<Cause> {
        const Deed* deed = m_ledger.lastCommand();
        return deed != nullptr ? std::optional(causeOf(*deed)) : std::nullopt;
    });
}

WordReport Inspector::wordReport(const controller::Controller& controller,
                                 std::size_t index) const {
    WordReport report;
    report.index = index;
    report.word = controller.listShown()[index];
    report.text = fromLatin1(controller::displayListWordText(m_generation, report.word));
    const Origin origin = m_ledger.originShown(index, report.word);
    for (const std::uint32_t number : origin.deeds()) {
        if (const Deed* deed = m_ledger.deed(number)) {
            report.causes.push_back(causeOf(*deed));
        }
    }
    return report;
}

// --- pixels

StepReport Inspector::stepReport(const controller::Controller& controller,
                                 const controller::PixelStep& step) const {
    StepReport report;
    report.before = step.before & rgbBits;
    report.after = step.after & rgbBits;
    report.colours = step.colours;
    report.covers = step.covers;
    report.tags = step.tags;
    if (step.begin) {
        report.words.push_back(wordReport(controller, *step.begin));
    }
    for (const std::size_t vertex : step.vertices) {
        report.words.push_back(wordReport(controller, vertex));
    }
    if (step.vertices.empty()) {
        report.words.push_back(wordReport(controller, step.word));
    }
    return report;
}

PixelReport Inspector::pixel(const controller::Controller& controller, int x, int y) const {
    PixelReport report;
    report.x = x;
    report.y = y;
    const controller::Frame& frame = controller.frame();
    const controller::Picture& picture = frame.picture;
    if (x < 0 || y < 0 || x >= picture.width || y >= picture.height) {
        return report;
    }
    report.isOnPanel = true;
    report.colour = picture.at(x, y) & rgbBits;
    report.tag = frame.tags[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                            static_cast<std::size_t>(x)];
    for (const controller::PixelStep& step : controller.historyOf(x, y).steps) {
        report.steps.push_back(stepReport(controller, step));
    }
    return report;
}

PixelReport Inspector::pixel(int x, int y) const {
    return m_module.locked(
        [&](const controller::Controller& controller) { return pixel(controller, x, y); });
}

QRect Inspector::outline(const std::vector<std::size_t>& words) const {
    const controller::PixelRect area = m_module.locked(
        [&](const controller::Controller& controller) { return controller.areaOf(words); });
    return {QPoint(area.left, area.top), QPoint(area.right - 1, area.bottom - 1)};
}

// --- lists, registers, memory

std::vector<WordReport> Inspector::list(const controller::Controller& controller) const {
    std::vector<WordReport> words;
    const std::size_t length = lengthOf(controller.listShown());
    words.reserve(length);
    for (std::size_t i = 0; i < length; ++i) {
        words.push_back(wordReport(controller, i));
    }
    return words;
}

std::vector<WordReport> Inspector::list() const {
    return m_module.locked([this](const controller::Controller& c) { return list(c); });
}

std::uint32_t Inspector::listNumber() const {
    return m_module.counts().swaps;
}

std::vector<RegisterReport> Inspector::registers(const controller::Controller& controller) const {
    std::vector<RegisterReport> reports;
    for (std::size_t i = 0; i < controller::registerCount; ++i) {
        const auto& info = controller::registerInfo(static_cast<controller::Register>(i));
        if (controller::contains(info.generations, m_generation)) {
            const std::uint32_t address = info.address(m_generation);
            reports.push_back(
                {QString::fromLatin1(info.name), address, controller.peek32(address)});
        }
    }
    return reports;
}

std::vector<RegisterReport> Inspector::registers() const {
    return m_module.locked([this](const controller::Controller& c) { return registers(c); });
}

QByteArray Inspector::memory(std::uint32_t address, std::size_t count) const {
    return m_module.locked([&](const controller::Controller& controller) {
        QByteArray bytes;
        for (std::size_t i = 0; i < count; ++i) {
            const auto at = static_cast<std::uint32_t>(address + i) & controller::addressMask;
            bytes += static_cast<char>(controller.peek8(at));
        }
        return bytes;
    });
}

QString Inspector::placeName(std::uint32_t address) const {
    const std::string name = controller::registerName(m_generation, address);
    return fromLatin1(name.empty() ? controller::memoryName(m_generation, address) : name);
}

std::optional<std::uint32_t> Inspector::addressOf(const QString& place) const {
    const QStringList parts = place.split('+');
    if (parts.size() > 2) {
        return {};
    }
    bool ok = true;
    const std::uint32_t offset = parts.size() == 2 ? parts[1].toUInt(&ok, 0) : 0;
    if (!ok) {
        return {};
    }
    const std::uint32_t number = parts[0].toUInt(&ok, 0);
    if (ok) {
        return (number + offset) & controller::addressMask;
    }
    const controller::MemoryLayout layout = controller::memoryLayout(m_generation);
    for (const controller::Span span :
         {layout.general, layout.rom, layout.displayList, layout.palette, layout.registers,
          layout.ring, layout.coprocessor}) {
        if (span.size > 0 &&
            parts[0] == fromLatin1(controller::memoryName(m_generation, span.base))) {
            return span.base + offset;
        }
    }
    const auto id = controller::registerNamed(parts[0].toStdString());
    if (id && controller::contains(controller::registerInfo(*id).generations, m_generation)) {
        return controller::registerInfo(*id).address(m_generation) + offset;
    }
    return {};
}

bool comesFrom(const StepReport& step, const QString& pattern) {
    const auto matches = [&pattern](const QString& text) {
        return matchesPattern(pattern, text) || matchesPattern(pattern, text.section(' ', 0, 0));
    };
    return std::any_of(step.words.begin(), step.words.end(), [&](const WordReport& word) {
        return matches(word.text) ||
               std::any_of(word.causes.begin(), word.causes.end(),
                           [&](const Cause& cause) { return matches(cause.text); });
    });
}

// --- text

QString colourText(std::uint32_t rgb) {
    return QStringLiteral("0x") +
           QString::number(rgb & rgbBits, 16).toUpper().rightJustified(6, '0');
}

namespace {

QString wordLine(const WordReport& word) {
    return QStringLiteral("%1  %2").arg(word.index, 4).arg(word.text);
}

QStringList causeLines(const std::vector<Cause>& causes, const QString& indent) {
    if (causes.empty()) {
        return {indent + QStringLiteral("nobody knows by what")};
    }
    QStringList lines;
    for (const Cause& cause : causes) {
        const QString how =
            lines.isEmpty() ? QStringLiteral("by ") : QStringLiteral("what was put there by ");
        lines += indent + how + cause.text;
        if (!cause.transactions.isEmpty()) {
            lines += indent + QStringLiteral("  in ") + cause.transactions;
        }
    }
    return lines;
}

QString effectOf(const StepReport& step) {
    QStringList effects;
    if (step.colours) {
        effects += QStringLiteral("%1 -> %2%3")
                       .arg(colourText(step.before), colourText(step.after),
                            step.covers ? QString() : QStringLiteral(" (mixed)"));
    }
    if (step.tags) {
        effects += QStringLiteral("tag");
    }
    return effects.join(QStringLiteral(", "));
}

bool haveOneCause(const WordReport& a, const WordReport& b) {
    return std::equal(a.causes.begin(), a.causes.end(), b.causes.begin(), b.causes.end(),
                      [](const Cause& x, const Cause& y) { return x.number == y.number; });
}

} // namespace

QStringList linesOf(const PixelReport& pixel) {
    if (!pixel.isOnPanel) {
        return {QStringLiteral("pixel %1 %2 is not on the panel").arg(pixel.x).arg(pixel.y)};
    }
    QStringList lines{QStringLiteral("pixel %1 %2: colour %3, tag %4")
                          .arg(pixel.x)
                          .arg(pixel.y)
                          .arg(colourText(pixel.colour))
                          .arg(pixel.tag)};
    for (auto step = pixel.steps.rbegin(); step != pixel.steps.rend(); ++step) {
        for (const WordReport& word : step->words) {
            lines += wordLine(word);
        }
        lines.last() += QStringLiteral("   %1").arg(effectOf(*step));
        lines += causeLines(step->drawing().causes, QStringLiteral("        "));
    }
    return lines;
}

QStringList linesOf(const std::vector<WordReport>& list) {
    QStringList lines;
    const WordReport* previous = nullptr;
    for (const WordReport& word : list) {
        if (previous == nullptr || !haveOneCause(*previous, word)) {
            lines += causeLines(word.causes, QString());
        }
        lines += wordLine(word);
        previous = &word;
    }
    return lines;
}

QStringList linesOf(const std::vector<RegisterReport>& registers) {
    QStringList lines;
    for (const RegisterReport& report : registers) {
        lines += QStringLiteral("%1 0x%2 %3")
                     .arg(report.name, -22)
                     .arg(QString::number(report.value, 16).toUpper().rightJustified(8, '0'))
                     .arg(static_cast<std::int32_t>(report.value));
    }
    return lines;
}

QStringList linesOf(std::uint32_t address, const QByteArray& memory) {
    constexpr int perLine = 16;
    QStringList lines;
    for (int at = 0; at < memory.size(); at += perLine) {
        const QByteArray part = memory.mid(at, perLine);
        QString text;
        for (const char byte : part) {
            text += byte >= ' ' && byte <= '~' ? QChar::fromLatin1(byte) : QChar('.');
        }
        lines += QStringLiteral("0x%1  %2  %3")
                     .arg(address + static_cast<std::uint32_t>(at), 6, 16, QLatin1Char('0'))
                     .arg(QString::fromLatin1(part.toHex(' ')), -47)
                     .arg(text);
    }
    return lines;
}

} // namespace panel
