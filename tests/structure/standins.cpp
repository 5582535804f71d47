// What stands in for parts of the virtual instrument where a package is not there is complete: that
// this links is the test.
#include "virtualboard.h"
#include "vncserver.h"

namespace {

struct NoWires : board::Wires {
    void powerDown(bool /*high*/) override {}
    void chipSelect(bool /*high*/) override {}
    void transfer(const std::uint8_t* /*sent*/, std::uint8_t* /*received*/,
                  std::size_t /*length*/) override {}
};

} // namespace

int main() {
    NoWires wires;
    const panel::VncServer server(QString(), QImage(), {});
    try {
        const board::VirtualBoard board(wires);
    } catch (const board::BoardError&) {
        return panel::VncServer::isAvailable() ? 1 : 0;
    }
    return 1;
}
