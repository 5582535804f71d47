#pragma once

#include "platform.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

// What the display controller sees in one bracket of chip select.
struct Transaction {
    enum Kind : std::uint8_t { Read, Write, HostCommand };

    Kind kind = Read;
    std::uint32_t address = 0;      // of reads and writes
    std::vector<std::uint8_t> data; // read by the host, written by it, or the command's three bytes
    std::vector<std::size_t> messageSizes = {}; // SPI messages it came in; not compared by ==

    static Transaction read(std::uint32_t address, std::vector<std::uint8_t> data);
    static Transaction write(std::uint32_t address, std::vector<std::uint8_t> data);
    static Transaction hostCommand(std::uint8_t command, std::uint8_t parameter = 0,
                                   std::uint8_t third = 0);
    // Little-endian values of the common widths.
    static Transaction read8(std::uint32_t address, std::uint8_t value);
    static Transaction read16(std::uint32_t address, std::uint16_t value);
    static Transaction read32(std::uint32_t address, std::uint32_t value);
    static Transaction write8(std::uint32_t address, std::uint8_t value);
    static Transaction write16(std::uint32_t address, std::uint16_t value);
    static Transaction write32(std::uint32_t address, std::uint32_t value);
};
bool operator==(const Transaction& a, const Transaction& b);
std::ostream& operator<<(std::ostream& out, const Transaction& transaction);

// A board for tests: implements the plain functions of platform.h, sleeps without sleeping, and
// keeps a record of everything asked of it, in order. Behind the bus is a memory of the
// controller's 4 MiB address space: what is written reads back, until a test says otherwise.
//
// An idle coprocessor sits in that memory, at its addresses in all generations at once (they do not
// overlap): what is published in REG_CMD_WRITE is consumed at once, and a display-list swap is done
// at once. What the host writes to the command FIFO collects in commandWords().
//
// There is one, `board`; call board.reset() first in every test.
class RecordingBoard {
public:
    RecordingBoard();

    // Forgets everything: the record, the memory, what was scripted.
    void reset();
    // Forgets the record only, to look at what follows.
    void clearRecord();

    // ---- What happened ----

    // Every event as text, in order: "init", "open", "close", "CS low", "PD high", "sleep 20",
    // "send 80 20 00" (one message, the host only sends), "exchange 05 -> 7C" (one message of one
    // byte each way), "receive 00 01" (one message, the host only receives).
    const std::vector<std::string>& events() const { return m_events; }
    // The same without the messages.
    std::vector<std::string> eventsBesidesMessages() const;

    // Finished brackets of chip select, all of them or only those of one kind, or only writes to
    // (or reads of) one address.
    const std::vector<Transaction>& transactions() const { return m_transactions; }
    std::vector<Transaction> transactions(Transaction::Kind kind) const;
    std::vector<Transaction> transactions(Transaction::Kind kind, std::uint32_t address) const;

    // Number of SPI messages and the bytes in them.
    std::size_t messageCount() const { return m_messageCount; }
    std::size_t byteCount() const { return m_byteCount; }

    // Sum of all sleeps.
    unsigned sleptMs() const { return m_sleptMs; }

    // All words that the host put into the command FIFO, as one stream: display-list words,
    // commands, arguments, strings. A write that ends within a word is filled up with zeros.
    std::vector<std::uint32_t> commandWords() const;
    // The same, byte by byte.
    const std::vector<std::uint8_t>& commandBytes() const { return m_commandBytes; }

    // ---- What the controller holds ----

    // Four bytes, little-endian. The neighbouring registers are four bytes away.
    void poke(std::uint32_t address, std::uint32_t value);
    std::uint32_t peek(std::uint32_t address) const;
    // Sets every byte of the memory: what is read where nothing was written. 0 after reset().
    void fillMemory(std::uint8_t value);

    // The next reads that begin at `address` give these values, one per transaction, and then what
    // the memory holds.
    void queueReads(std::uint32_t address, std::initializer_list<std::uint32_t> values);

    // Whether the coprocessor consumes commands and swaps by itself; true after reset(). Without
    // it, REG_CMD_READ and REG_DLSWAP hold what was poked or written.
    void setCoprocessorIdle(bool idle) { m_coprocessorIdle = idle; }

    // Called at each sleep, after it is recorded: a place to move a finger.
    void onSleep(std::function<void(unsigned ms)> callback) { m_onSleep = std::move(callback); }

    // ---- The board's side of platform.h ----

    void recordEvent(std::string event);
    void setPin(gpio_name name, gpio_val val);
    void sleep(unsigned ms);
    std::uint8_t exchangeMessage(std::uint8_t sent);
    void sendMessage(const std::uint8_t* data, std::size_t size);
    void receiveMessage(std::uint8_t* data, std::size_t size);

private:
    void countMessage(std::size_t size);
    std::uint8_t clockByte(std::uint8_t sent);
    std::uint8_t nextReadByte();
    void writeByte(std::uint8_t value);
    void endTransaction();
    void consumeAsCoprocessor(const Transaction& write);

    std::vector<std::string> m_events;
    std::vector<Transaction> m_transactions;
    std::size_t m_messageCount = 0;
    std::size_t m_byteCount = 0;
    unsigned m_sleptMs = 0;
    std::vector<std::uint8_t> m_commandBytes;

    std::vector<std::uint8_t> m_memory;
    std::map<std::uint32_t, std::deque<std::uint32_t>> m_queuedReads;
    bool m_coprocessorIdle = true;
    std::function<void(unsigned)> m_onSleep;

    // The bracket of chip select that is open.
    bool m_selected = false;
    std::vector<std::uint8_t> m_header;
    Transaction m_current;
};

extern RecordingBoard board;
