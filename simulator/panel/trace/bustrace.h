#pragma once

#include "commanddecoder.h"
#include "displaymodule.h"

#include <QFile>
#include <QString>

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

// Writes every transaction to a file.
class BusTrace : public Watcher {
public:
    explicit BusTrace(controller::Generation generation) : m_text(generation) {}

    bool open(const QString& path);
    QString errorString() const { return m_file.errorString(); }

    void transactionEnded(const controller::Transaction& transaction) override;

private:
    TransactionText m_text;
    QFile m_file;
};

} // namespace panel
