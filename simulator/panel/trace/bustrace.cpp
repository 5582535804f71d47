#include "bustrace.h"

#include "commandtext.h"
#include "memorylayout.h"
#include "names.h"

#include <algorithm>

namespace panel {

namespace {

constexpr int writeHeaderBytes = 3;
constexpr int readHeaderBytes = 4; // with its dummy byte
constexpr int mostBytesShown = 16;
constexpr int listWordBytes = 4;
constexpr double nanosecondsPerSecond = 1e9;

QByteArray toBytes(const std::vector<std::uint8_t>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

std::uint32_t byteAt(const QByteArray& bytes, int at) {
    return static_cast<std::uint8_t>(bytes[at]);
}

std::uint32_t addressIn(const QByteArray& header) {
    return ((byteAt(header, 0) & 0x3F) << 16) | (byteAt(header, 1) << 8) | byteAt(header, 2);
}

std::uint32_t littleEndian(const QByteArray& bytes) {
    std::uint32_t value = 0;
    for (int i = bytes.size() - 1; i >= 0; --i) {
        value = (value << 8) | byteAt(bytes, i);
    }
    return value;
}

// As many digits as the bytes have.
QString number(const QByteArray& bytes) {
    if (bytes.isEmpty()) {
        return QStringLiteral("-");
    }
    const QString digits = QString::number(littleEndian(bytes), 16).toUpper();
    return QStringLiteral("0x") + digits.rightJustified(2 * bytes.size(), '0');
}

QString byteList(const QByteArray& bytes) {
    if (bytes.isEmpty()) {
        return QStringLiteral("-");
    }
    QString text = QString::fromLatin1(bytes.left(mostBytesShown).toHex(' '));
    if (bytes.size() > mostBytesShown) {
        text += QStringLiteral(" ... (%1 bytes)").arg(bytes.size());
    }
    return text;
}

QString hostCommand(const QByteArray& sent) {
    QString text = QStringLiteral("H ") + QString::fromStdString(controller::hostCommandName(
                                              static_cast<std::uint8_t>(byteAt(sent, 0))));
    if (sent.size() > 1 && byteAt(sent, 1) != 0) {
        text += ' ' + number(sent.mid(1, 1));
    }
    return text;
}

QString lineAt(controller::Nanoseconds time, const QString& text) {
    const double seconds = static_cast<double>(time) / nanosecondsPerSecond;
    return QString::number(seconds, 'f', 6).rightJustified(11) + ' ' + text;
}

QString commandText(controller::Generation generation, const controller::RingCommand& command) {
    QString text =
        QString::fromStdString(controller::commandText(generation, *command.info, command.words));
    if (command.info->trailer == controller::Trailer::Text) {
        text += QStringLiteral(" \"%1\"").arg(QString::fromLatin1(command.text.c_str()));
    }
    return text;
}

} // namespace

TransactionText::TransactionText(controller::Generation generation)
    : m_generation(generation), m_ring(generation) {}

QString TransactionText::of(const controller::Transaction& transaction) {
    return lineAt(transaction.start,
                  bodyOf(toBytes(transaction.sent), toBytes(transaction.received)));
}

QString TransactionText::bodyOf(const QByteArray& sent, const QByteArray& received) {
    if (sent.isEmpty()) {
        return QStringLiteral("- nothing sent");
    }
    const std::uint32_t kind = byteAt(sent, 0) >> 6;
    if (kind == 1 || sent == QByteArray(writeHeaderBytes, '\0')) {
        return hostCommand(sent);
    }
    if (kind == 2 && sent.size() >= writeHeaderBytes) {
        return writeText(addressIn(sent), sent.mid(writeHeaderBytes));
    }
    if (kind == 0 && sent.size() >= readHeaderBytes) {
        return QStringLiteral("R ") +
               placeAndValues(addressIn(sent), received.mid(readHeaderBytes));
    }
    return QStringLiteral("? ") + byteList(sent);
}

QString TransactionText::writeText(std::uint32_t address, const QByteArray& data) {
    const controller::MemoryLayout layout = controller::memoryLayout(m_generation);
    if (!layout.ring.contains(address)) {
        return QStringLiteral("W ") + placeAndValues(address, data);
    }
    const QStringList commands = m_ring.feed(address - layout.ring.base, data);
    return QStringLiteral("W %1 %2").arg(
        QString::fromStdString(controller::memoryName(m_generation, address)),
        commands.isEmpty() ? QStringLiteral("-") : commands.join(QStringLiteral("; ")));
}

QString TransactionText::placeAndValues(std::uint32_t address, const QByteArray& data) const {
    if (!controller::registerName(m_generation, address).empty()) {
        return registerValues(address, data);
    }
    const QString place = QString::fromStdString(controller::memoryName(m_generation, address));
    const bool displayList = controller::memoryLayout(m_generation).displayList.contains(address);
    return place + ' ' + (displayList ? displayListWords(data) : byteList(data));
}

QString TransactionText::registerValues(std::uint32_t address, const QByteArray& data) const {
    QStringList values;
    int at = 0;
    do {
        const std::string name =
            controller::registerName(m_generation, address + static_cast<std::uint32_t>(at));
        values += QStringLiteral("%1 %2").arg(QString::fromStdString(name),
                                              number(data.mid(at, listWordBytes)));
        at += listWordBytes;
    } while (at < data.size());
    return values.join(QStringLiteral("; "));
}

QString TransactionText::displayListWords(const QByteArray& data) const {
    if (data.isEmpty()) {
        return QStringLiteral("-");
    }
    QStringList words;
    for (int at = 0; at < data.size(); at += listWordBytes) {
        words += QString::fromStdString(controller::displayListWordText(
            m_generation, littleEndian(data.mid(at, listWordBytes))));
    }
    return words.join(QStringLiteral("; "));
}

void BusTrace::add(controller::Nanoseconds now, const QString& text) {
    endCommand();
    m_last = now;
    const QByteArray line = lineAt(now, text).toLatin1() + '\n';
    if (m_inTransaction) {
        m_waiting += line;
    } else {
        write(line);
    }
}

// What a command has put into the list stands in one line.
void BusTrace::endCommand() {
    if (m_words.isEmpty()) {
        return;
    }
    const QStringList words = std::move(m_words);
    m_words.clear();
    add(m_commandTime,
        QStringLiteral("L %1 %2: %3")
            .arg(m_firstIndex)
            .arg(commandText(m_generation, m_command), words.join(QStringLiteral("; "))));
}

void BusTrace::transactionEnded(const controller::Transaction& transaction) {
    endCommand();
    write(m_text.of(transaction).toLatin1() + '\n' + m_waiting);
    m_waiting.clear();
    m_inTransaction = false;
    m_last = transaction.end;
}

void BusTrace::pinChanged(controller::Pin pin, bool high, controller::Nanoseconds now) {
    const bool isSelect = pin == controller::Pin::ChipSelect;
    add(now, QStringLiteral("P %1 %2").arg(isSelect ? QStringLiteral("CS") : QStringLiteral("PD"),
                                           high ? QStringLiteral("high") : QStringLiteral("low")));
    m_inTransaction = m_inTransaction || (isSelect && !high);
}

void BusTrace::commandTaken(const controller::RingCommand& command, controller::Nanoseconds now) {
    endCommand();
    m_command = command;
    m_commandTime = now;
}

// What comes from the ring as it is stands in its transaction already.
void BusTrace::listWordPut(std::size_t index, std::uint32_t word) {
    if (m_command.info == nullptr) {
        return;
    }
    if (m_words.isEmpty()) {
        m_firstIndex = index;
    }
    m_words += QString::fromStdString(controller::displayListWordText(m_generation, word));
}

void BusTrace::listSwapped(controller::Nanoseconds now) {
    add(now, QStringLiteral("D"));
}

void BusTrace::complained(const std::string& text) {
    add(m_last, QStringLiteral("! ") + QString::fromStdString(text));
}

void BusTrace::touched(int x, int y, controller::Nanoseconds now) {
    add(now, QStringLiteral("T %1 %2").arg(x).arg(y));
}

void BusTrace::released(controller::Nanoseconds now) {
    add(now, QStringLiteral("T up"));
}

void BusTrace::note(TraceEvent event, const QString& text, controller::Nanoseconds now) {
    const char* const signs[] = {"<", ">", "S", "F"};
    add(now, QStringLiteral("%1 %2").arg(QLatin1String(signs[static_cast<int>(event)]), text));
}

bool BusTrace::finish() {
    endCommand();
    write(m_waiting); // of a transaction that has not come to its end
    m_waiting.clear();
    return Trace::finish();
}

} // namespace panel
