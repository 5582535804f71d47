#pragma once

#include "controller.h"
#include "generation.h"
#include "memorylayout.h"
#include "ringcommand.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace panel {

// A write transaction.
struct TransactionNote {
    std::uint32_t number = 0; // of all transactions, from 1; 0: none is known
    controller::Nanoseconds start = 0;
    std::uint32_t address = 0;
    std::uint32_t bytes = 0; // of data; 0 while they are still coming
};

// What has written words into a list or memory.
struct Deed {
    std::uint32_t number = 0; // from 1
    controller::Nanoseconds time = 0;
    std::optional<controller::RingCommand> command; // none: the host has written them itself
    std::vector<TransactionNote> transactions;      // that brought the command; that wrote
};

// How a word came to where it is: the numbers of deeds, first that which put it there, then that
// which put it where it was copied from, last that which made it. Of more than there is room for,
// the last but one is forgotten. 0: none, or nobody knows.
class Origin {
public:
    static constexpr std::size_t most = 4;

    Origin() = default;
    explicit Origin(std::uint32_t deed) : m_deeds{deed} {}

    Origin movedBy(std::uint32_t deed) const;
    const std::array<std::uint32_t, most>& deeds() const { return m_deeds; }
    bool isKnown() const { return m_deeds[0] != 0; }

private:
    std::array<std::uint32_t, most> m_deeds{};
};

// Keeps account of where each word of the display lists and of general memory comes from: which
// command has put it there, what that command had copied, and which transactions brought it.
//
// It costs some 5 MB and a few nanoseconds for a word. A deed is forgotten when nothing is left of
// what it has written; so it is bounded by what the controller's memory has room for.
//
// Not followed: bytes that are copied to another place within a word, lists appended from flash,
// and what animations write to memory, which counts as the last command's.
class Ledger : public controller::Observer {
public:
    explicit Ledger(controller::Generation generation);

    // Of a word of the list that is shown; unknown if that is not the word.
    Origin originShown(std::size_t index, std::uint32_t word) const;
    const Deed* deed(std::uint32_t number) const; // null: unknown
    const Deed* lastCommand() const { return deed(m_lastCommand); }

    // How many deeds are kept.
    std::size_t size() const { return m_deeds.size(); }

    void transactionEnded(const controller::Transaction& transaction) override;
    void pinChanged(controller::Pin pin, bool high, controller::Nanoseconds now) override;
    void powerLost() override;
    void commandTaken(const controller::RingCommand& command, controller::Nanoseconds now) override;
    void listWordPut(std::size_t index, std::uint32_t word) override;
    void bytesWritten(std::uint32_t address, std::uint32_t count) override;
    void bytesCopied(std::uint32_t destination, std::uint32_t source, std::uint32_t count) override;
    void ringFed(std::uint32_t offset) override;
    void listsExchanged() override;
    void listSwapped(controller::Nanoseconds now) override;

private:
    struct Entry {
        std::uint32_t word = 0;
        Origin origin;
    };
    using List = std::vector<Entry>;

    std::uint32_t add(Deed deed);
    void forgetUnused();
    Origin* originAt(std::uint32_t address);
    void mark(std::uint32_t address, std::uint32_t count, const Origin& origin);
    void hostWrote(const TransactionNote& note, const std::vector<std::uint8_t>& sent);
    Origin appended() const;

    const controller::MemoryLayout m_layout;
    std::unordered_map<std::uint32_t, Deed> m_deeds;
    std::uint32_t m_lastDeed = 0;
    std::size_t m_mostDeeds;

    std::uint32_t m_transactions = 0;
    controller::Nanoseconds m_transactionStart = 0;
    std::vector<TransactionNote> m_ring; // of each word

    std::uint32_t m_lastCommand = 0;
    std::uint32_t m_wordsPut = 0;  // by it
    std::vector<Origin> m_general; // of each word
    List m_written;
    std::size_t m_length = 0; // of what commands have put there
    List m_shown;
    // An animation shows lists of its own: the one that was written when it began, and its words.
    List m_overlaid;
    std::uint32_t m_overlay = 0; // the command that began it
    bool m_overlayShown = false;
    bool m_exchanged = false; // since a list was shown
};

} // namespace panel
