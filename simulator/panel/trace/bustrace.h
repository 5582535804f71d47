#pragma once

#include "commanddecoder.h"
#include "trace.h"

#include <QString>
#include <QStringList>

namespace panel {

// Describes transactions, one line of text each, without line feed:
//
//     0.134501 R REG_ID 0x7C
//     0.135010 W REG_PCLK 0x00000005
//     0.140233 W RAM_CMD+16 CMD_DLSTART; CMD_TEXT 160 28 30 OPT_CENTER "COUNTER MODE"
//     0.001201 H ACTIVE
//
// Time in seconds, then R for a read, W for a write, H for a host command, the place, and what was
// read or written: a number for a register, words of the display list or commands by name, bytes
// for other memory.
class TransactionText {
public:
    explicit TransactionText(controller::Generation generation);

    // To be called with every transaction, in order: commands may be cut between transactions.
    QString of(const controller::Transaction& transaction);

private:
    QString bodyOf(const QByteArray& sent, const QByteArray& received);
    QString writeText(std::uint32_t address, const QByteArray& data);
    QString placeAndValues(std::uint32_t address, const QByteArray& data) const;
    QString registerValues(std::uint32_t address, const QByteArray& data) const;
    QString displayListWords(const QByteArray& data) const;

    const controller::Generation m_generation;
    CommandDecoder m_ring;
};

// Everything as text, one line each: besides transactions
//
//     0.001000 P PD high                      a pin's edge
//     0.140233 L 12 CMD_BUTTON 429 8 40 40 27 OPT_FLAT "": SAVE_CONTEXT; ...
//                                             words a command has put into the list, from index 12
//     0.140233 D                              another list is shown
//     3.200000 T 339 28                       a touch, and "T up" its end
//     3.250001 < START 1                      a request to the server
//     3.250002 > Ok                           its reply
//     3.300000 S tap 339 28                   a line of the script
//     3.300000 F bus-dead: ...              a fault on demand, when it strikes first
//     3.300000 ! ...                          a complaint of the controller
class BusTrace : public Trace {
public:
    explicit BusTrace(controller::Generation generation)
        : m_generation(generation), m_text(generation) {}

    bool finish() override;
    void note(TraceEvent event, const QString& text, controller::Nanoseconds now) override;

    void transactionEnded(const controller::Transaction& transaction) override;
    void pinChanged(controller::Pin pin, bool high, controller::Nanoseconds now) override;
    void commandTaken(const controller::RingCommand& command, controller::Nanoseconds now) override;
    void listWordPut(std::size_t index, std::uint32_t word) override;
    void listSwapped(controller::Nanoseconds now) override;
    void complained(const std::string& text) override;

protected:
    void touched(int x, int y, controller::Nanoseconds now) override;
    void released(controller::Nanoseconds now) override;

private:
    void add(controller::Nanoseconds now, const QString& text);
    void endCommand();

    const controller::Generation m_generation;
    TransactionText m_text;
    // A transaction's line is known when it ends; what happens meanwhile waits for it.
    bool m_inTransaction = false;
    QByteArray m_waiting;
    controller::Nanoseconds m_last = 0; // the time of the last line
    // The last command, and what it has put so far.
    controller::RingCommand m_command;
    controller::Nanoseconds m_commandTime = 0;
    std::size_t m_firstIndex = 0;
    QStringList m_words;
};

} // namespace panel
