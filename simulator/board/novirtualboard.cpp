// In the place of virtualboard.cpp where umockdev is not wanted: there is only the kernel's board.

#include "virtualboard.h"

namespace board {

class VirtualBoard::Private {};

VirtualBoard::VirtualBoard(Wires& /*wires*/, const Options& /*options*/) {
    throw BoardError("this panelsim is built without umockdev and has no board of its own (give it "
                     "the kernel's: --board DEVICE)");
}

VirtualBoard::~VirtualBoard() = default;

std::vector<std::pair<std::string, std::string>> VirtualBoard::environment() const {
    return {};
}

std::string VirtualBoard::root() const {
    return {};
}

void VirtualBoard::setTransfersFail(bool /*fail*/) {}

bool VirtualBoard::setLinesForbidden(bool /*forbidden*/) {
    return false;
}

Traffic VirtualBoard::traffic() const {
    return {};
}

void VirtualBoard::sync() {}

} // namespace board
