#pragma once

#include "board.h"
#include "faultorder.h"
#include "strikes.h"

#include <mutex>
#include <random>
#include <vector>

namespace panel {

// Wires between the board and what hangs on them, with the faults of bus and pins. Faults may be
// added and removed from any thread.
class FaultyWires : public board::Wires {
public:
    // Both must outlive the wires.
    FaultyWires(board::Wires& wires, Strikes& strikes) : m_wires(wires), m_strikes(strikes) {}

    void add(const FaultOrder& order); // of the bus or the pins
    void remove(const QString& name);

    // board::Wires
    void powerDown(bool high) override;
    void chipSelect(bool high) override;
    void transfer(const std::uint8_t* sent, std::uint8_t* received, std::size_t length) override;

private:
    struct Fault {
        FaultOrder order;
        std::mt19937 random;
        std::uint64_t messages = 0; // that counted, since it began
    };
    // What becomes of one message.
    struct Fate {
        bool fails = false;
        bool corrupted = false;
        std::chrono::milliseconds delay{0};
    };

    bool losesLevel(const char* line);
    Fate fateOf(std::size_t length);
    void strike(Fault& fault, std::size_t length, Fate& fate);
    void transferCorrupted(const std::uint8_t* sent, std::uint8_t* received, std::size_t length);

    board::Wires& m_wires;
    Strikes& m_strikes;
    std::mutex m_mutex; // guards what follows
    std::vector<Fault> m_faults;
};

} // namespace panel
