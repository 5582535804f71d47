#pragma once

// The instrument's board where this machine's own kernel has one, with its spidev and GPIO lines:
// of the module in module/, whose character device is the other side of the wires.

#include "board.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace board {

class KernelBoard : public Board {
public:
    // `wires` must outlive the board. `device` is the module's, "/dev/panelboard"; it takes one
    // board at a time. Throws BoardError.
    KernelBoard(Wires& wires, const std::string& device);
    // The same with a file descriptor of it, or of what behaves as it does: each read gives one
    // event, none when there is none. The board closes it.
    KernelBoard(Wires& wires, int device);
    ~KernelBoard() override;

    // Nothing: every program finds it.
    std::vector<std::pair<std::string, std::string>> environment() const override;

    void setTransfersFail(bool fail) override;
    Traffic traffic() const override;
    void sync() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace board
