#include "recordingboard.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <ostream>
#include <utility>

RecordingBoard board;

namespace {

constexpr std::size_t memorySize = std::size_t{1} << 22;
constexpr std::uint32_t addressMask = memorySize - 1;
constexpr std::uint32_t fifoSize = 4096;

// More than any test needs: the code under test waits for something that never comes.
constexpr std::size_t eventLimit = 1'000'000;

struct CoprocessorAddresses {
    std::uint32_t ramCmd;
    std::uint32_t regCmdRead;
    std::uint32_t regCmdWrite;
    std::uint32_t regDlSwap;
};

constexpr std::array<CoprocessorAddresses, 2> coprocessors = {{
    {0x108000, 0x1024E4, 0x1024E8, 0x102450}, // generation 1
    {0x308000, 0x3020F8, 0x3020FC, 0x302054}, // generations 2 and 3
}};

// The start of the command FIFO that `address` lies in, or 0.
std::uint32_t commandFifoOf(std::uint32_t address) {
    for (const auto& coprocessor : coprocessors) {
        if (address >= coprocessor.ramCmd && address < coprocessor.ramCmd + fifoSize) {
            return coprocessor.ramCmd;
        }
    }
    return 0;
}

std::string hex(std::uint32_t value, int digits) {
    std::array<char, 9> text{};
    std::snprintf(text.data(), text.size(), "%0*X", digits, static_cast<unsigned>(value));
    return text.data();
}

std::string hexBytes(const std::uint8_t* data, std::size_t size) {
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        text += " " + hex(data[i], 2);
    }
    return text;
}

std::vector<std::uint8_t> littleEndian(std::uint32_t value, unsigned size) {
    std::vector<std::uint8_t> bytes;
    for (unsigned i = 0; i < size; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i));
    }
    return bytes;
}

} // namespace

// ---- Transaction ----

Transaction Transaction::read(std::uint32_t address, std::vector<std::uint8_t> data) {
    return {Read, address, std::move(data)};
}

Transaction Transaction::write(std::uint32_t address, std::vector<std::uint8_t> data) {
    return {Write, address, std::move(data)};
}

Transaction Transaction::hostCommand(std::uint8_t command, std::uint8_t parameter,
                                     std::uint8_t third) {
    return {HostCommand, 0, {command, parameter, third}};
}

Transaction Transaction::read8(std::uint32_t address, std::uint8_t value) {
    return read(address, littleEndian(value, 1));
}

Transaction Transaction::read16(std::uint32_t address, std::uint16_t value) {
    return read(address, littleEndian(value, 2));
}

Transaction Transaction::read32(std::uint32_t address, std::uint32_t value) {
    return read(address, littleEndian(value, 4));
}

Transaction Transaction::write8(std::uint32_t address, std::uint8_t value) {
    return write(address, littleEndian(value, 1));
}

Transaction Transaction::write16(std::uint32_t address, std::uint16_t value) {
    return write(address, littleEndian(value, 2));
}

Transaction Transaction::write32(std::uint32_t address, std::uint32_t value) {
    return write(address, littleEndian(value, 4));
}

bool operator==(const Transaction& a, const Transaction& b) {
    return a.kind == b.kind && a.address == b.address && a.data == b.data;
}

std::ostream& operator<<(std::ostream& out, const Transaction& transaction) {
    if (transaction.kind == Transaction::HostCommand) {
        out << "host command";
    } else {
        out << (transaction.kind == Transaction::Read ? "read 0x" : "write 0x")
            << hex(transaction.address, 6) << ":";
    }
    return out << hexBytes(transaction.data.data(), transaction.data.size());
}

// ---- RecordingBoard ----

RecordingBoard::RecordingBoard() {
    reset();
}

void RecordingBoard::reset() {
    clearRecord();
    m_memory.assign(memorySize, 0);
    m_queuedReads.clear();
    m_coprocessorIdle = true;
    m_onSleep = nullptr;
    m_selected = false;
    m_header.clear();
    m_current = {};
}

void RecordingBoard::clearRecord() {
    m_events.clear();
    m_transactions.clear();
    m_messageCount = 0;
    m_byteCount = 0;
    m_sleptMs = 0;
    m_commandBytes.clear();
}

std::vector<std::string> RecordingBoard::eventsBesidesMessages() const {
    std::vector<std::string> selection;
    std::copy_if(m_events.begin(), m_events.end(), std::back_inserter(selection),
                 [](const std::string& event) {
                     return event.rfind("send", 0) != 0 && event.rfind("exchange", 0) != 0 &&
                            event.rfind("receive", 0) != 0;
                 });
    return selection;
}

std::vector<Transaction> RecordingBoard::transactions(Transaction::Kind kind) const {
    std::vector<Transaction> selection;
    std::copy_if(m_transactions.begin(), m_transactions.end(), std::back_inserter(selection),
                 [kind](const Transaction& each) { return each.kind == kind; });
    return selection;
}

std::vector<Transaction> RecordingBoard::transactions(Transaction::Kind kind,
                                                      std::uint32_t address) const {
    std::vector<Transaction> selection = transactions(kind);
    selection.erase(
        std::remove_if(selection.begin(), selection.end(),
                       [address](const Transaction& each) { return each.address != address; }),
        selection.end());
    return selection;
}

std::vector<std::uint32_t> RecordingBoard::commandWords() const {
    std::vector<std::uint32_t> words((m_commandBytes.size() + 3) / 4);
    for (std::size_t i = 0; i < m_commandBytes.size(); ++i) {
        words[i / 4] |= std::uint32_t{m_commandBytes[i]} << 8 * (i % 4);
    }
    return words;
}

void RecordingBoard::poke(std::uint32_t address, std::uint32_t value) {
    for (std::uint32_t i = 0; i < 4; ++i) {
        m_memory[(address + i) & addressMask] = static_cast<std::uint8_t>(value >> 8 * i);
    }
}

std::uint32_t RecordingBoard::peek(std::uint32_t address) const {
    std::uint32_t value = 0;
    for (std::uint32_t i = 0; i < 4; ++i) {
        value |= std::uint32_t{m_memory[(address + i) & addressMask]} << 8 * i;
    }
    return value;
}

void RecordingBoard::fillMemory(std::uint8_t value) {
    m_memory.assign(memorySize, value);
}

void RecordingBoard::queueReads(std::uint32_t address,
                                std::initializer_list<std::uint32_t> values) {
    auto& queue = m_queuedReads[address];
    queue.insert(queue.end(), values);
}

void RecordingBoard::recordEvent(std::string event) {
    m_events.push_back(std::move(event));
    if (m_events.size() > eventLimit) {
        std::fprintf(stderr, "recording board: %zu events, the code under test waits for ever\n",
                     m_events.size());
        std::abort();
    }
}

void RecordingBoard::setPin(gpio_name name, gpio_val val) {
    const bool high = val == GPIO_HIGH;
    std::string pin = "pin " + std::to_string(name);
    if (name == GPIO_PD) {
        pin = "PD";
    } else if (name == GPIO_CS) {
        pin = "CS";
        if (high && m_selected) {
            endTransaction();
        }
        m_selected = !high;
    }
    recordEvent(pin + (high ? " high" : " low"));
}

void RecordingBoard::sleep(unsigned ms) {
    m_sleptMs += ms;
    recordEvent("sleep " + std::to_string(ms));
    if (m_onSleep) {
        m_onSleep(ms);
    }
}

std::uint8_t RecordingBoard::exchangeMessage(std::uint8_t sent) {
    countMessage(1);
    const std::uint8_t received = clockByte(sent);
    recordEvent("exchange" + hexBytes(&sent, 1) + " ->" + hexBytes(&received, 1));
    return received;
}

void RecordingBoard::sendMessage(const std::uint8_t* data, std::size_t size) {
    countMessage(size);
    std::for_each(data, data + size, [this](std::uint8_t byte) { clockByte(byte); });
    recordEvent("send" + hexBytes(data, size));
}

void RecordingBoard::receiveMessage(std::uint8_t* data, std::size_t size) {
    countMessage(size);
    std::generate(data, data + size, [this] { return clockByte(0); });
    recordEvent("receive" + hexBytes(data, size));
}

void RecordingBoard::countMessage(std::size_t size) {
    ++m_messageCount;
    m_byteCount += size;
    if (m_selected) {
        m_current.messageSizes.push_back(size);
    }
}

// One byte each way, as the controller would take it. Without chip select nobody listens.
std::uint8_t RecordingBoard::clockByte(std::uint8_t sent) {
    constexpr std::size_t addressSize = 3;
    constexpr std::uint8_t writeFlag = 0x80;
    constexpr std::uint8_t hostCommandFlag = 0x40;
    if (!m_selected) {
        return 0;
    }
    if (m_header.size() < addressSize) {
        m_header.push_back(sent);
        if (m_header.size() == addressSize) {
            const std::uint32_t address =
                std::uint32_t{m_header[0]} << 16 | std::uint32_t{m_header[1]} << 8 | m_header[2];
            m_current.address = address & addressMask;
            m_current.kind = (m_header[0] & writeFlag) != 0         ? Transaction::Write
                             : (m_header[0] & hostCommandFlag) != 0 ? Transaction::HostCommand
                                                                    : Transaction::Read;
        }
        return 0;
    }
    if (m_current.kind == Transaction::Write) {
        writeByte(sent);
        return 0;
    }
    if (m_current.kind == Transaction::HostCommand) {
        m_header.push_back(sent);
        return 0;
    }
    if (m_header.size() == addressSize) {
        m_header.push_back(sent); // the dummy byte
        return 0;
    }
    return nextReadByte();
}

std::uint8_t RecordingBoard::nextReadByte() {
    const std::size_t offset = m_current.data.size();
    const auto queue = m_queuedReads.find(m_current.address);
    std::uint8_t value = m_memory[(m_current.address + offset) & addressMask];
    if (queue != m_queuedReads.end() && !queue->second.empty() && offset < sizeof(std::uint32_t)) {
        value = static_cast<std::uint8_t>(queue->second.front() >> 8 * offset);
    }
    m_current.data.push_back(value);
    return value;
}

void RecordingBoard::writeByte(std::uint8_t value) {
    std::uint32_t target = m_current.address + static_cast<std::uint32_t>(m_current.data.size());
    if (const std::uint32_t fifo = commandFifoOf(m_current.address); fifo != 0) {
        target = fifo + (target - fifo) % fifoSize;
    }
    m_memory[target & addressMask] = value;
    m_current.data.push_back(value);
}

void RecordingBoard::endTransaction() {
    Transaction finished = std::exchange(m_current, {});
    std::vector<std::uint8_t> header = std::exchange(m_header, {});
    switch (finished.kind) {
    case Transaction::Read:
        if (header.size() == 3) { // no dummy byte: the host command ACTIVE
            finished = Transaction{Transaction::HostCommand, 0, header, finished.messageSizes};
        } else if (auto queue = m_queuedReads.find(finished.address);
                   queue != m_queuedReads.end() && !queue->second.empty()) {
            queue->second.pop_front();
        }
        break;
    case Transaction::HostCommand:
        finished.address = 0;
        finished.data = std::move(header);
        break;
    case Transaction::Write:
        if (commandFifoOf(finished.address) != 0) {
            m_commandBytes.resize((m_commandBytes.size() + 3) / 4 * 4);
            m_commandBytes.insert(m_commandBytes.end(), finished.data.begin(), finished.data.end());
        }
        if (m_coprocessorIdle) {
            consumeAsCoprocessor(finished);
        }
        break;
    }
    m_transactions.push_back(std::move(finished));
}

void RecordingBoard::consumeAsCoprocessor(const Transaction& write) {
    for (const auto& coprocessor : coprocessors) {
        if (write.address == coprocessor.regCmdWrite) {
            poke(coprocessor.regCmdRead, peek(coprocessor.regCmdWrite));
        } else if (write.address == coprocessor.regDlSwap) {
            poke(coprocessor.regDlSwap, 0);
        }
    }
}

// ---- platform.h ----

int platform_init() {
    board.recordEvent("init");
    return 0;
}

void platform_sleep_ms(unsigned int ms) {
    board.sleep(ms);
}

void platform_spi_init() {
    board.recordEvent("open");
}

void platform_spi_deinit() {
    board.recordEvent("close");
}

unsigned char platform_spi_send_recv_byte(unsigned char b) {
    return board.exchangeMessage(b);
}

void platform_spi_send_data(unsigned char* data, unsigned short len) {
    board.sendMessage(data, len);
}

void platform_spi_recv_data(unsigned char* data, unsigned short len) {
    board.receiveMessage(data, len);
}

void platform_gpio_value(gpio_name name, gpio_val val) {
    board.setPin(name, val);
}
