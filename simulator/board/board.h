#pragma once

// The instrument's board, whichever stands in for it.

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace board {

// The board cannot be built; what() names the thing and the mend.
class BoardError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Thrown by Wires::transfer(): the message fails.
class TransferFailed : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// spidev's own limit for the bytes of one message, and of one request of several records.
constexpr std::size_t longestMessage = 4096;

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
    // has `length` bytes. A message for which TransferFailed is thrown fails with EIO.
    virtual void transfer(const std::uint8_t* sent, std::uint8_t* received, std::size_t length) = 0;
};

struct Traffic {
    std::uint64_t messages = 0; // SPI messages, failed ones included
    std::uint64_t bytes = 0;    // bytes of these messages
};

class Board {
public:
    Board() = default;
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;
    // A program still on the board sees its transfers fail.
    virtual ~Board() = default;

    // Variables (name, value) to add to the environment of a program that is to find this board.
    // Such programs may come and go, also by SIGKILL, one at a time, on one board.
    virtual std::vector<std::pair<std::string, std::string>> environment() const = 0;

    // While on, every SPI message fails with EIO and does not reach the wires.
    virtual void setTransfersFail(bool fail) = 0;

    // While on, nobody may open the files of the lines to write a level. A program that has them
    // open keeps them. False where that is not for us to say.
    virtual bool setLinesForbidden(bool /*forbidden*/) { return false; }

    virtual Traffic traffic() const = 0;

    // Returns when every level written so far has reached the wires. Without it that takes a
    // moment: at the latest the next SPI message brings them first. Not to be called from the
    // wires.
    virtual void sync() = 0;
};

} // namespace board
