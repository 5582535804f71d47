#pragma once

// The instrument's board without the instrument: the nodes that the application opens
// ("/dev/spidev2.0" and three lines below "/sys/class/gpio"), laid out by umockdev in a directory
// of their own and shown to any program that is started with environment(). What such a program
// does to them arrives as calls of Wires, in the order in which the program did it.

#include "board.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace board {

// Faults that a board can be built with.
struct Options {
    bool spiNode = true;               // false: there is no "/dev/spidev2.0"
    bool gpioExport = true;            // false: there is no "/sys/class/gpio/export"
    bool linesAlreadyExported = false; // true: writes to the export file are refused
};

class VirtualBoard : public Board {
public:
    // `wires` must outlive the board. Throws BoardError. Programs started from the thread that
    // builds the board do their SPI messages half as fast again as others: their timer slack is
    // set to the least.
    explicit VirtualBoard(Wires& wires, const Options& options = {});
    // Removes the board's directory.
    ~VirtualBoard() override;

    std::vector<std::pair<std::string, std::string>> environment() const override;

    // The directory that stands for "/" below "/dev" and "/sys" in such a program.
    std::string root() const;

    void setTransfersFail(bool fail) override;
    bool setLinesForbidden(bool forbidden) override;
    Traffic traffic() const override;
    void sync() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace board
