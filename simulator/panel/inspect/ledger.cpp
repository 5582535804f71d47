#include "ledger.h"

#include <algorithm>
#include <unordered_set>

namespace panel {

namespace {

constexpr std::size_t fewestDeeds = 16384;
constexpr std::uint32_t wordBytes = 4;
constexpr std::size_t headerBytes = 3;
constexpr std::uint32_t writeKind = 2; // in the top bits of the first byte

bool isCommand(const controller::RingCommand& taken, controller::Command command) {
    return taken.info != nullptr && taken.info->command == command;
}

bool beginsOverlay(const controller::RingCommand& command) {
    using controller::Command;
    return isCommand(command, Command::Spinner) || isCommand(command, Command::Logo) ||
           isCommand(command, Command::Calibrate);
}

bool isSame(const TransactionNote& a, const TransactionNote& b) {
    return a.number == b.number;
}

} // namespace

Origin Origin::movedBy(std::uint32_t deed) const {
    Origin moved(deed);
    std::copy(m_deeds.begin(), m_deeds.end() - 1, moved.m_deeds.begin() + 1);
    if (m_deeds.back() != 0) {
        moved.m_deeds.back() = m_deeds.back(); // who made it
    }
    return moved;
}

Ledger::Ledger(controller::Generation generation)
    : m_layout(controller::memoryLayout(generation)), m_mostDeeds(fewestDeeds),
      m_ring(controller::ringBytes / wordBytes), m_general(m_layout.general.size / wordBytes),
      m_written(controller::displayListWords), m_shown(controller::displayListWords) {}

Origin Ledger::originShown(std::size_t index, std::uint32_t word) const {
    const List& list = m_overlayShown ? m_overlaid : m_shown;
    if (index < list.size() && list[index].origin.isKnown() && list[index].word == word) {
        return list[index].origin;
    }
    return m_overlayShown ? Origin(m_overlay) : Origin();
}

const Deed* Ledger::deed(std::uint32_t number) const {
    const auto found = m_deeds.find(number);
    return found == m_deeds.end() ? nullptr : &found->second;
}

std::uint32_t Ledger::add(Deed deed) {
    if (m_deeds.size() >= m_mostDeeds) {
        forgetUnused();
    }
    deed.number = ++m_lastDeed;
    m_deeds.emplace(deed.number, std::move(deed));
    return m_lastDeed;
}

void Ledger::forgetUnused() {
    std::unordered_set<std::uint32_t> used{m_lastCommand, m_overlay};
    const auto use = [&used](const Origin& origin) {
        for (const std::uint32_t deed : origin.deeds()) {
            if (deed != 0) {
                used.insert(deed);
            }
        }
    };
    std::for_each(m_general.begin(), m_general.end(), use);
    for (const List* list : {&m_written, &m_shown, &m_overlaid}) {
        std::for_each(list->begin(), list->end(), [&use](const Entry& e) { use(e.origin); });
    }
    for (auto at = m_deeds.begin(); at != m_deeds.end();) {
        at = used.count(at->first) != 0 ? std::next(at) : m_deeds.erase(at);
    }
    m_mostDeeds = std::max(fewestDeeds, 2 * m_deeds.size());
}

Origin* Ledger::originAt(std::uint32_t address) {
    if (m_layout.general.contains(address)) {
        return &m_general[(address - m_layout.general.base) / wordBytes];
    }
    if (m_layout.displayList.contains(address)) {
        return &m_written[(address - m_layout.displayList.base) / wordBytes].origin;
    }
    return nullptr;
}

void Ledger::mark(std::uint32_t address, std::uint32_t count, const Origin& origin) {
    const std::uint32_t end = address + count;
    for (std::uint32_t at = address & ~(wordBytes - 1); at < end; at += wordBytes) {
        if (Origin* there = originAt(at)) {
            *there = origin;
        }
    }
}

// --- transactions

void Ledger::pinChanged(controller::Pin pin, bool high, controller::Nanoseconds now) {
    if (pin == controller::Pin::ChipSelect && !high) {
        m_transactionStart = now;
    }
}

void Ledger::transactionEnded(const controller::Transaction& transaction) {
    ++m_transactions;
    const std::vector<std::uint8_t>& sent = transaction.sent;
    if (sent.size() <= headerBytes || sent[0] >> 6 != writeKind) {
        return;
    }
    const std::uint32_t address =
        (sent[0] & 0x3FU) << 16 | static_cast<std::uint32_t>(sent[1]) << 8 | sent[2];
    const auto bytes = static_cast<std::uint32_t>(sent.size() - headerBytes);
    const TransactionNote note{m_transactions, transaction.start, address, bytes};
    if (m_layout.ring.contains(address)) {
        const std::size_t first = (address - m_layout.ring.base) / wordBytes;
        const std::size_t words =
            std::min<std::size_t>((bytes + wordBytes - 1) / wordBytes, m_ring.size());
        for (std::size_t i = 0; i < words; ++i) {
            m_ring[(first + i) % m_ring.size()] = note;
        }
    } else {
        hostWrote(note, sent);
    }
}

void Ledger::hostWrote(const TransactionNote& note, const std::vector<std::uint8_t>& sent) {
    if (originAt(note.address) == nullptr) {
        return;
    }
    mark(note.address, note.bytes, Origin(add({0, note.start, {}, {note}})));
    if (!m_layout.displayList.contains(note.address)) {
        return;
    }
    for (std::uint32_t i = 0; i < note.bytes; ++i) { // the words are known too
        const std::uint32_t at = note.address - m_layout.displayList.base + i;
        if (at < controller::displayListBytes) {
            std::uint32_t& word = m_written[at / wordBytes].word;
            const unsigned shift = 8 * (at % wordBytes);
            word = (word & ~(0xFFU << shift)) | static_cast<std::uint32_t>(sent[headerBytes + i])
                                                    << shift;
        }
    }
}

void Ledger::ringFed(std::uint32_t offset) {
    m_ring[offset / wordBytes % m_ring.size()] = {m_transactions + 1, m_transactionStart,
                                                  m_layout.ring.base + offset, 0};
}

// --- the coprocessor

void Ledger::commandTaken(const controller::RingCommand& command, controller::Nanoseconds now) {
    Deed deed{0, now, command, {}};
    for (std::uint32_t i = 0; i < command.length / wordBytes; ++i) {
        const TransactionNote& note = m_ring[(command.offset / wordBytes + i) % m_ring.size()];
        if (note.number != 0 &&
            (deed.transactions.empty() || !isSame(deed.transactions.back(), note))) {
            deed.transactions.push_back(note);
        }
    }
    m_lastCommand = add(std::move(deed));
    m_wordsPut = 0;
    if (isCommand(command, controller::Command::DlStart) ||
        isCommand(command, controller::Command::Logo)) {
        m_length = 0;
    }
    if (beginsOverlay(command)) {
        m_overlaid.assign(m_written.begin(),
                          m_written.begin() + static_cast<std::ptrdiff_t>(m_length));
        m_overlay = m_lastCommand;
    }
}

void Ledger::listWordPut(std::size_t index, std::uint32_t word) {
    m_written[index] = {word, appended()};
    m_length = index + 1;
    ++m_wordsPut;
}

// Of the next word that the last command puts into the list.
Origin Ledger::appended() const {
    const Deed* by = lastCommand();
    if (by == nullptr || !isCommand(*by->command, controller::Command::Append)) {
        return Origin(m_lastCommand);
    }
    const std::uint32_t from =
        (by->command->words[0] + m_wordsPut * wordBytes) & controller::addressMask;
    if (!m_layout.general.contains(from)) {
        return Origin(m_lastCommand);
    }
    return m_general[(from - m_layout.general.base) / wordBytes].movedBy(m_lastCommand);
}

void Ledger::bytesWritten(std::uint32_t address, std::uint32_t count) {
    mark(address, count, Origin(m_lastCommand));
}

void Ledger::bytesCopied(std::uint32_t destination, std::uint32_t source, std::uint32_t count) {
    std::vector<Origin> moved;
    for (std::uint32_t done = 0; done < count; done += wordBytes) {
        const Origin* from = originAt(source + done);
        moved.push_back(from != nullptr ? from->movedBy(m_lastCommand) : Origin(m_lastCommand));
    }
    for (std::size_t i = 0; i < moved.size(); ++i) {
        if (Origin* to = originAt(destination + static_cast<std::uint32_t>(i) * wordBytes)) {
            *to = moved[i];
        }
    }
}

// --- what is shown

void Ledger::listsExchanged() {
    std::swap(m_written, m_shown);
    m_exchanged = true;
}

void Ledger::listSwapped(controller::Nanoseconds /*now*/) {
    m_overlayShown = !m_exchanged;
    m_exchanged = false;
}

void Ledger::powerLost() {
    std::fill(m_general.begin(), m_general.end(), Origin());
    std::fill(m_ring.begin(), m_ring.end(), TransactionNote());
    std::fill(m_written.begin(), m_written.end(), Entry());
    std::fill(m_shown.begin(), m_shown.end(), Entry());
    m_overlaid.clear();
    m_overlayShown = false;
    m_deeds.clear();
    m_lastCommand = 0;
    m_overlay = 0;
}

} // namespace panel
