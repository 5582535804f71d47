#include "spidevice.h"

#include <linux/spi/spidev.h>
#include <sys/ioctl.h>

static_assert(sizeof(spi_ioc_transfer) == 32, "the driver takes transfer records of 32 bytes");

namespace {

// The driver takes addresses as 64-bit numbers, whatever the size of a pointer.
__u64 addressOf(const char* bytes) {
    return reinterpret_cast<std::uintptr_t>(bytes);
}

} // namespace

SpiDevice::SpiDevice(const QString& path) : m_file(path) {}

void SpiDevice::setMode(const unsigned int& mode) {
    m_mode = mode;
    if (m_handle != 0) {
        ioctl(m_handle, SPI_IOC_WR_MODE32, &m_mode);
    }
}

void SpiDevice::setSpeed(const unsigned int& speed) {
    m_speed = speed;
    if (m_handle != 0) {
        ioctl(m_handle, SPI_IOC_WR_MAX_SPEED_HZ, &m_speed);
    }
}

void SpiDevice::setBitsPerWord(const unsigned int& bitsPerWord) {
    m_bitsPerWord = bitsPerWord;
    if (m_handle != 0) {
        // The driver reads one byte, the low one.
        static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "a word starts with its low byte");
        ioctl(m_handle, SPI_IOC_WR_BITS_PER_WORD, &m_bitsPerWord);
    }
}

bool SpiDevice::open() {
    // ExistingOnly: an ordinary file left in place of a missing node would look like a device.
    const bool opened = m_file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly);
    m_handle = m_file.handle();
    if (!opened) {
        return false;
    }
    setMode(m_mode);
    setBitsPerWord(m_bitsPerWord);
    setSpeed(m_speed);
    return true;
}

void SpiDevice::close() {
    m_file.close();
}

bool SpiDevice::readWrite(char* tx, char* rx, int len) {
    spi_ioc_transfer transfer{};
    transfer.tx_buf = addressOf(tx);
    transfer.rx_buf = addressOf(rx);
    transfer.len = static_cast<__u32>(len);
    transfer.cs_change = m_csAlwaysDown ? 1 : 0;
    return ioctl(m_handle, SPI_IOC_MESSAGE(1), &transfer) >= 0;
}

void SpiDevice::write(QByteArray data) {
    readWrite(data.data(), nullptr, data.size());
}

QByteArray SpiDevice::read(int len) {
    if (len < 0) {
        return {};
    }
    QByteArray received(len, Qt::Uninitialized);
    return readWrite(nullptr, received.data(), len) ? received : QByteArray();
}

QByteArray SpiDevice::readWrite(QByteArray data) {
    QByteArray received(data.size(), Qt::Uninitialized);
    return readWrite(data.data(), received.data(), data.size()) ? received : QByteArray();
}
