#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstdint>

// One Linux spidev character device. Every transfer is one kernel SPI message of one transfer
// record, at the settings of the device. Reports nothing itself: the caller looks at the results.
class SpiDevice {
public:
    // Mode 0, 8 bits per word, 20 MHz, chip select released after each message. Opens nothing.
    explicit SpiDevice(const QString& path);

    unsigned int mode() const { return m_mode; }
    unsigned int speed() const { return m_speed; }
    unsigned int bitsPerWord() const { return m_bitsPerWord; }
    bool isCSAlwaysDown() const { return m_csAlwaysDown; }

    // Each stores its value and, unless the device was never opened, hands it to the driver, whose
    // answer is ignored. Before open() they only store; open() applies them.
    void setMode(const unsigned int& mode);   // SPI_MODE_* and SPI_* flags of the driver
    void setSpeed(const unsigned int& speed); // highest clock in Hz
    void setBitsPerWord(const unsigned int& bitsPerWord); // the driver reads the low byte only

    // Whether the driver is asked to keep its own chip select active after each message.
    void setCSAlwaysDown(bool csAlwaysDown) { m_csAlwaysDown = csAlwaysDown; }

    // Opens the node, never creating one, and applies mode, word size and speed. False when it
    // cannot be opened.
    bool open();
    void close();

    // The node, for what it says about a failed open().
    const QFile& file() const { return m_file; }

    // Full duplex: sends `len` bytes of `tx` and receives as many into `rx`. A null `tx` sends
    // zeros, a null `rx` drops what comes in. False when the driver refuses.
    bool readWrite(char* tx, char* rx, int len);

    // Sends only; whether it succeeded is not known.
    void write(QByteArray data);

    // Receives `len` bytes while sending zeros; empty when the transfer fails, and without one when
    // `len` is negative. How long a message may be is the driver's matter (4096 bytes unless it was
    // loaded with another "bufsiz").
    QByteArray read(int len);

    // Full duplex: the bytes received, as many as were sent; empty when the transfer fails.
    QByteArray readWrite(QByteArray data);

private:
    std::uint32_t m_mode = 0;
    std::uint32_t m_bitsPerWord = 8;
    std::uint32_t m_speed = 20000000;
    QFile m_file;
    bool m_csAlwaysDown = false;
    std::int32_t m_handle = 0; // 0 until open(), -1 after a failed one; close() leaves it
};
