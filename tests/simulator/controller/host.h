#pragma once

#include "controller.h"
#include "joinedwords.h"
#include "memorylayout.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

// A host on the bus of a controller model: what a driver does, byte by byte, with a clock of its
// own. Addresses and numbers are literals of the chip's documentation.

namespace controllertest {

using controller::Generation;
using controller::Nanoseconds;

constexpr Nanoseconds microsecond = 1'000;
constexpr Nanoseconds ms = 1'000'000;

// Register addresses that differ between E1 and the later generations.
struct Addresses {
    explicit Addresses(Generation generation)
        : m_registers(generation == Generation::E1 ? 0x102400 : 0x302000),
          m_e1(generation == Generation::E1) {}

    std::uint32_t id() const { return m_registers; }
    std::uint32_t frames() const { return m_registers + 4; }
    std::uint32_t clock() const { return m_registers + 8; }
    std::uint32_t cpuReset() const { return m_e1 ? 0x10241C : 0x302020; }
    std::uint32_t hCycle() const { return m_e1 ? 0x102428 : 0x30202C; }
    std::uint32_t dlSwap() const { return m_e1 ? 0x102450 : 0x302054; }
    std::uint32_t pclk() const { return m_e1 ? 0x10246C : 0x302070; }
    std::uint32_t cmdRead() const { return m_e1 ? 0x1024E4 : 0x3020F8; }
    std::uint32_t cmdWrite() const { return m_e1 ? 0x1024E8 : 0x3020FC; }
    std::uint32_t cmdDl() const { return m_e1 ? 0x1024EC : 0x302100; }
    std::uint32_t touchMode() const { return m_e1 ? 0x1024F0 : 0x302104; }
    std::uint32_t touchRawXy() const { return m_e1 ? 0x102508 : 0x30211C; }
    std::uint32_t touchScreenXy() const { return m_e1 ? 0x102510 : 0x302124; }
    std::uint32_t touchTagXy() const { return m_e1 ? 0x102514 : 0x302128; }
    std::uint32_t touchTag() const { return m_e1 ? 0x102518 : 0x30212C; }
    std::uint32_t touchTransformA() const { return m_e1 ? 0x10251C : 0x302150; }
    std::uint32_t macro0() const { return m_e1 ? 0x1024C8 : 0x3020D8; }
    std::uint32_t intFlags() const { return m_e1 ? 0x102498 : 0x3020A8; }
    std::uint32_t ramCmd() const { return m_e1 ? 0x108000 : 0x308000; }
    std::uint32_t ramDl() const { return m_e1 ? 0x100000 : 0x300000; }

private:
    std::uint32_t m_registers;
    bool m_e1;
};

// Keeps what the model tells.
class Recorder : public controller::Observer {
public:
    void frameScanned(std::uint32_t number, Nanoseconds now) override {
        frames.push_back(number);
        frameTimes.push_back(now);
    }
    void listSwapped(Nanoseconds now) override { swapTimes.push_back(now); }
    void transactionEnded(const controller::Transaction& transaction) override {
        transactions.push_back(transaction);
    }
    void complained(const std::string& text) override { complaints.push_back(text); }

    bool complainedAbout(const std::string& part) const {
        for (const std::string& text : complaints) {
            if (text.find(part) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    std::vector<std::uint32_t> frames;
    std::vector<Nanoseconds> frameTimes;
    std::vector<Nanoseconds> swapTimes;
    std::vector<controller::Transaction> transactions;
    std::vector<std::string> complaints;
};

class Host {
public:
    explicit Host(Generation generation, const controller::Options& options = {});

    controller::Controller chip;
    Recorder seen;
    Addresses at;
    Nanoseconds now = 0;

    // --- bus
    void bytes(const std::vector<std::uint8_t>& sent,
               std::vector<std::uint8_t>* received = nullptr);
    void hostCommand(std::uint8_t command, std::uint8_t parameter = 0);
    std::vector<std::uint8_t> read(std::uint32_t address, std::size_t count);
    std::uint8_t read8(std::uint32_t address);
    std::uint16_t read16(std::uint32_t address);
    std::uint32_t read32(std::uint32_t address);
    void write(std::uint32_t address, const std::vector<std::uint8_t>& data);
    void write8(std::uint32_t address, std::uint8_t value);
    void write16(std::uint32_t address, std::uint16_t value);
    void write32(std::uint32_t address, std::uint32_t value);

    void wait(Nanoseconds time);
    // Power-cycle, ACTIVE, and wait until all engines run.
    void boot();
    // Starts the scan: 480 x 272, 75 (E1: 60) frames a second.
    void startPanel();
    void bootWithPanel();
    // Writes the touch transform of this instrument's panel.
    void calibrate();
    void waitFrames(std::uint32_t frames);

    // --- coprocessor
    // Writes words, or bytes padded to words, into the ring and publishes them; waits for nothing.
    void send(const std::vector<std::uint32_t>& values);
    void sendBytes(const std::vector<std::uint8_t>& data);
    bool ringIsEmpty();
    // A display list without coprocessor commands of the caller's own, and its swap.
    std::vector<std::uint32_t> listWritten(); // the words at RAM_DL up to REG_CMD_DL

private:
    std::uint32_t m_writeOffset = 0;
};

// The touch transform of this instrument's panel, A to F.
constexpr std::array<std::int32_t, 6> panelTransform = {24916, 0, -591770, 372, 22707, 10494};

// A string as it stands behind a command: with its zero, padded to words.
std::vector<std::uint32_t> words(const std::string& text);
std::vector<std::uint32_t> repeated(const std::vector<std::uint32_t>& command, std::size_t times);
constexpr std::uint32_t pair(int low, int high) {
    return (static_cast<std::uint32_t>(low) & 0xFFFFU) | static_cast<std::uint32_t>(high) << 16U;
}

// Command words.
namespace cmd {
constexpr std::uint32_t dlStart = 0xFFFFFF00;
constexpr std::uint32_t swap = 0xFFFFFF01;
constexpr std::uint32_t interrupt = 0xFFFFFF02;
constexpr std::uint32_t bgColor = 0xFFFFFF09;
constexpr std::uint32_t fgColor = 0xFFFFFF0A;
constexpr std::uint32_t gradient = 0xFFFFFF0B;
constexpr std::uint32_t text = 0xFFFFFF0C;
constexpr std::uint32_t button = 0xFFFFFF0D;
constexpr std::uint32_t keys = 0xFFFFFF0E;
constexpr std::uint32_t progress = 0xFFFFFF0F;
constexpr std::uint32_t slider = 0xFFFFFF10;
constexpr std::uint32_t scrollbar = 0xFFFFFF11;
constexpr std::uint32_t toggle = 0xFFFFFF12;
constexpr std::uint32_t gauge = 0xFFFFFF13;
constexpr std::uint32_t clock = 0xFFFFFF14;
constexpr std::uint32_t calibrate = 0xFFFFFF15;
constexpr std::uint32_t spinner = 0xFFFFFF16;
constexpr std::uint32_t stop = 0xFFFFFF17;
constexpr std::uint32_t memCrc = 0xFFFFFF18;
constexpr std::uint32_t regRead = 0xFFFFFF19;
constexpr std::uint32_t memWrite = 0xFFFFFF1A;
constexpr std::uint32_t memSet = 0xFFFFFF1B;
constexpr std::uint32_t memZero = 0xFFFFFF1C;
constexpr std::uint32_t memCpy = 0xFFFFFF1D;
constexpr std::uint32_t append = 0xFFFFFF1E;
constexpr std::uint32_t snapshot = 0xFFFFFF1F;
constexpr std::uint32_t touchTransform = 0xFFFFFF20;
constexpr std::uint32_t bitmapTransform = 0xFFFFFF21;
constexpr std::uint32_t inflate = 0xFFFFFF22;
constexpr std::uint32_t getPtr = 0xFFFFFF23;
constexpr std::uint32_t loadImage = 0xFFFFFF24;
constexpr std::uint32_t getProps = 0xFFFFFF25;
constexpr std::uint32_t loadIdentity = 0xFFFFFF26;
constexpr std::uint32_t translate = 0xFFFFFF27;
constexpr std::uint32_t scale = 0xFFFFFF28;
constexpr std::uint32_t rotate = 0xFFFFFF29;
constexpr std::uint32_t setMatrix = 0xFFFFFF2A;
constexpr std::uint32_t setFont = 0xFFFFFF2B;
constexpr std::uint32_t track = 0xFFFFFF2C;
constexpr std::uint32_t dial = 0xFFFFFF2D;
constexpr std::uint32_t number = 0xFFFFFF2E;
constexpr std::uint32_t screenSaver = 0xFFFFFF2F;
constexpr std::uint32_t sketch = 0xFFFFFF30;
constexpr std::uint32_t logo = 0xFFFFFF31;
constexpr std::uint32_t coldStart = 0xFFFFFF32;
constexpr std::uint32_t getMatrix = 0xFFFFFF33;
constexpr std::uint32_t gradColor = 0xFFFFFF34;
constexpr std::uint32_t setRotate = 0xFFFFFF36;
constexpr std::uint32_t snapshot2 = 0xFFFFFF37;
constexpr std::uint32_t setBase = 0xFFFFFF38;
constexpr std::uint32_t mediaFifo = 0xFFFFFF39;
constexpr std::uint32_t romFont = 0xFFFFFF3F;
constexpr std::uint32_t setFont2 = 0xFFFFFF3B;
constexpr std::uint32_t setScratch = 0xFFFFFF3C;
constexpr std::uint32_t sync = 0xFFFFFF42;
constexpr std::uint32_t setBitmap = 0xFFFFFF43;
constexpr std::uint32_t flashErase = 0xFFFFFF44;
constexpr std::uint32_t flashWrite = 0xFFFFFF45;
constexpr std::uint32_t flashRead = 0xFFFFFF46;
constexpr std::uint32_t flashUpdate = 0xFFFFFF47;
constexpr std::uint32_t flashDetach = 0xFFFFFF48;
constexpr std::uint32_t flashAttach = 0xFFFFFF49;
constexpr std::uint32_t flashFast = 0xFFFFFF4A;
constexpr std::uint32_t flashSpiDesel = 0xFFFFFF4B;
constexpr std::uint32_t flashSpiTx = 0xFFFFFF4C;
constexpr std::uint32_t flashSpiRx = 0xFFFFFF4D;
constexpr std::uint32_t flashSource = 0xFFFFFF4E;
constexpr std::uint32_t inflate2 = 0xFFFFFF50;
constexpr std::uint32_t animDraw = 0xFFFFFF56;
constexpr std::uint32_t gradientA = 0xFFFFFF57;
constexpr std::uint32_t fillWidth = 0xFFFFFF58;
constexpr std::uint32_t appendF = 0xFFFFFF59;
} // namespace cmd

} // namespace controllertest
