#include "faultorder.h"

#include "duration.h"

#include <algorithm>

namespace panel {

namespace {

using std::chrono::milliseconds;

constexpr int helpColumn = 45;
constexpr int terminalWidth = 100;
constexpr std::uint32_t foreignChipId = 0x12345678;
const QString serverPrefix = QStringLiteral("server-");

// The words behind a fault's name, taken one after the other.
class Arguments {
public:
    explicit Arguments(QStringList words) : m_words(std::move(words)) {}

    bool keyword(const char* word) {
        const bool there = !m_words.isEmpty() && m_words.first() == QLatin1String(word);
        if (there) {
            m_words.removeFirst();
        }
        return there;
    }
    // What is left out keeps its default.
    void number(unsigned& value, unsigned lowest, unsigned highest, int base = 10) {
        if (!m_words.isEmpty()) {
            value = m_words.takeFirst().toUInt(&m_good, base);
            m_good = m_good && value >= lowest && value <= highest;
        }
    }
    void time(milliseconds& value) {
        if (!m_words.isEmpty()) {
            const auto time = server::durationFromText(m_words.takeFirst());
            m_good = time.has_value();
            value = time.value_or(value);
        }
    }
    bool areGood() const { return m_good && m_words.isEmpty(); }

private:
    QStringList m_words;
    bool m_good = true;
};

struct OwnFault {
    Breaks breaks;
    const char* name;
    const char* arguments;
    const char* help;
    void (*read)(Arguments& arguments, FaultOrder& order);
};

void readNothing(Arguments& /*arguments*/, FaultOrder& /*order*/) {}

void readMessage(Arguments& arguments, FaultOrder& order) {
    order.bursts = arguments.keyword("burst");
    arguments.number(order.number, 1, UINT32_MAX);
}

void readChance(Arguments& arguments, FaultOrder& order) {
    arguments.number(order.number, 1, everythingPercent);
    arguments.number(order.seed, 0, UINT32_MAX);
}

void readId(Arguments& arguments, FaultOrder& order) {
    order.word = foreignChipId;
    arguments.number(order.word, 0, UINT32_MAX, 16);
}

template<int Default>
void readTime(Arguments& arguments, FaultOrder& order) {
    order.time = milliseconds(Default);
    arguments.time(order.time);
}

const OwnFault ownFaults[] = {
    {Breaks::BusDead, "bus-dead", "", "every SPI message fails", readNothing},
    {Breaks::BusFailsAt, "bus-fails-at", "[burst] [N]",
     "the N-th SPI message from now (the first) fails, once; burst: count only those of more than "
     "4 bytes, which carry commands",
     readMessage},
    {Breaks::BusFailsRandomly, "bus-fails-randomly", "[PERCENT [SEED]]",
     "so many (1) of a hundred SPI messages fail", readChance},
    {Breaks::BusCorrupts, "bus-corrupts", "[burst] [N]",
     "a bit in the middle of the N-th SPI message from now (the first) is wrong, both ways, once",
     readMessage},
    {Breaks::BusSlow, "bus-slow", "[TIME]", "each SPI message takes TIME (5ms) longer",
     readTime<5>},
    {Breaks::PinsForbidden, "pins-forbidden", "",
     "the files of the GPIO lines may not be opened, by a program started from now on",
     readNothing},
    {Breaks::PinsFail, "pins-fail", "", "levels written to the GPIO lines do not get there",
     readNothing},
    {Breaks::CoprocessorFault, "coprocessor-fault", "",
     "the controller's coprocessor stops with a fault, once", readNothing},
    {Breaks::CoprocessorStalled, "coprocessor-stalled", "",
     "the coprocessor takes no more commands", readNothing},
    {Breaks::ControllerSlowBoot, "controller-slow-boot", "[TIME]",
     "from its next start on the controller takes TIME (1s) to come up", readTime<1000>},
    {Breaks::ControllerBrownOut, "controller-brown-out", "[TIME]",
     "the controller's supply fails for TIME (10ms), once; it waits to be started then",
     readTime<10>},
    {Breaks::ControllerWrongId, "controller-wrong-id", "[WORD]",
     "it has another chip id, hexadecimal (12345678)", readId},
    {Breaks::ControllerSilent, "controller-silent", "",
     "every read from it gives 0, as without a chip", readNothing},
    {Breaks::ServerOff, "server-off", "", "the measurement server does not listen", readNothing},
};

std::vector<FaultEntry> makeTable() {
    std::vector<FaultEntry> table;
    for (const OwnFault& fault : ownFaults) {
        table.push_back({fault.breaks, QString::fromLatin1(fault.name),
                         QString::fromLatin1(fault.arguments), QString::fromLatin1(fault.help)});
    }
    for (const server::FaultEntry& fault : server::faultTable()) {
        if (fault.fault != server::Fault::None) {
            const QString arguments = QString::fromLatin1(fault.arguments) + " [for COMMAND]";
            table.push_back({Breaks::Server, serverPrefix + fault.name, arguments.trimmed(),
                             QStringLiteral("it ") + fault.help});
        }
    }
    return table;
}

// "after TIME" at the end of `words`, taken off them. False if that is no time.
bool takeDelay(QStringList& words, milliseconds& delay) {
    const int place = words.size() - 2;
    if (place < 1 || words[place] != QStringLiteral("after")) {
        return true;
    }
    const auto time = server::durationFromText(words.last());
    delay = time.value_or(delay);
    words.erase(words.begin() + place, words.end());
    return time.has_value();
}

// Broken into lines that begin at the help's column and end before the terminal does.
QString wrapped(const QString& text) {
    QString lines;
    int length = 0;
    for (const QString& word : text.split(' ')) {
        length += 1 + word.size();
        const bool fits = length <= terminalWidth - helpColumn;
        if (!lines.isEmpty()) {
            lines += fits ? QStringLiteral(" ") : '\n' + QString(helpColumn, ' ');
        }
        length = fits ? length : word.size();
        lines += word;
    }
    return lines;
}

bool readOwn(const QStringList& words, FaultOrder& order) {
    const auto* const own =
        std::find_if(std::begin(ownFaults), std::end(ownFaults),
                     [&order](const OwnFault& fault) { return order.name == fault.name; });
    Arguments arguments(words.mid(1));
    own->read(arguments, order);
    return arguments.areGood();
}

bool readServers(QStringList words, FaultOrder& order) {
    words.first().remove(0, serverPrefix.size());
    QString error;
    const auto rule = server::parseFault(words, &error);
    order.rule = rule.value_or(order.rule);
    return rule.has_value();
}

} // namespace

const std::vector<FaultEntry>& faultTable() {
    static const std::vector<FaultEntry> table = makeTable();
    return table;
}

QStringList faultNames() {
    QStringList names;
    for (const FaultEntry& entry : faultTable()) {
        names += entry.name;
    }
    return names;
}

std::optional<FaultOrder> parseFaultOrder(const QStringList& words, QString* error) {
    FaultOrder order;
    order.text = words.join(' ');
    QStringList rest = words;
    const bool delayIsGood = takeDelay(rest, order.after);
    order.name = rest.value(0);
    const auto entry = std::find_if(
        faultTable().begin(), faultTable().end(),
        [&order](const FaultEntry& candidate) { return candidate.name == order.name; });
    if (entry == faultTable().end()) {
        *error = QStringLiteral("there is no fault \"%1\"; there is %2")
                     .arg(order.name, faultNames().join(QStringLiteral(", ")));
        return std::nullopt;
    }
    order.breaks = entry->breaks;
    const bool good =
        order.breaks == Breaks::Server ? readServers(rest, order) : readOwn(rest, order);
    if (!good || !delayIsGood) {
        *error = QStringLiteral("it is written \"%1 [after TIME]\", not \"%2\"")
                     .arg(QString(entry->name + ' ' + entry->arguments).trimmed(), order.text);
        return std::nullopt;
    }
    return order;
}

QString faultHelp() {
    QString help;
    for (const FaultEntry& entry : faultTable()) {
        const QString usage = "  " + entry.name + ' ' + entry.arguments + ' ';
        help += usage.leftJustified(helpColumn) + wrapped(entry.help) + '\n';
    }
    return help;
}

} // namespace panel
