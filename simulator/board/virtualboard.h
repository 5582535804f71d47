#pragma once

// The instrument's board without the instrument: the nodes that the application opens
// ("/dev/spidev2.0" and three lines below "/sys/class/gpio"), laid out by umockdev in a directory
// of their own and shown to any program that is started with environment(). What such a program
// does to them arrives as calls of Wires, in the order in which the program did it.

#include "testbed.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace board {

// What hangs on the board's wires. Calls come from threads of the board, never two at once, and
// the program on the board waits for transfer() to return.
class Wires {
public:
    Wires() = default;
    Wires(const Wires&) = delete;
    Wires& operator=(const Wires&) = delete;
    virtual ~Wires() = default;

    // Levels written to the two lines; called for every write, also of the level it already has.
    virtual void powerDown(bool high) = 0;
    virtual void chipSelect(bool high) = 0;

    // One SPI message of `length` bytes (0 is possible). `sent` is null for a message that only
    // receives (zeros are clocked out), `received` is null for one that only sends; otherwise each
    // has `length` bytes.
    virtual void transfer(const std::uint8_t* sent, std::uint8_t* received, std::size_t length) = 0;
};

// Faults that a board can be built with.
struct Options {
    bool spiNode = true;               // false: there is no "/dev/spidev2.0"
    bool gpioExport = true;            // false: there is no "/sys/class/gpio/export"
    bool linesAlreadyExported = false; // true: writes to the export file are refused
};

struct Traffic {
    std::uint64_t messages = 0; // SPI messages, failed ones included
    std::uint64_t bytes = 0;    // bytes of these messages
};

class VirtualBoard {
public:
    // `wires` must outlive the board. Throws BoardError. Programs started from the thread that
    // builds the board do their SPI messages half as fast again as others: their timer slack is
    // set to the least.
    explicit VirtualBoard(Wires& wires, const Options& options = {});
    VirtualBoard(const VirtualBoard&) = delete;
    VirtualBoard& operator=(const VirtualBoard&) = delete;
    // Removes the board's directory. A program still on the board sees its transfers fail.
    ~VirtualBoard();

    // Variables (name, value) to add to the environment of a program that is to find this board.
    // Such programs may come and go, also by SIGKILL, one at a time, on one board.
    std::vector<std::pair<std::string, std::string>> environment() const;

    // The directory that stands for "/" below "/dev" and "/sys" in such a program.
    std::string root() const;

    // While on, every SPI message fails with EIO and does not reach the wires.
    void setTransfersFail(bool fail);

    Traffic traffic() const;

    // Returns when every level written so far has reached the wires. Without it that takes a
    // moment: at the latest the next SPI message brings them first. Not to be called from the
    // wires.
    void sync();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace board
