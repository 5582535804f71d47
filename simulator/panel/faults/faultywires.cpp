#include "faultywires.h"

#include <algorithm>
#include <thread>

namespace panel {

namespace {

constexpr std::size_t longestHeader = 4; // bytes; longer messages carry commands
constexpr std::uint8_t wrongBit = 0x10;

} // namespace

void FaultyWires::add(const FaultOrder& order) {
    remove(order.name);
    const std::lock_guard lock(m_mutex);
    m_faults.push_back({order, std::mt19937(order.seed), 0});
}

void FaultyWires::remove(const QString& name) {
    const std::lock_guard lock(m_mutex);
    m_faults.erase(std::remove_if(m_faults.begin(), m_faults.end(),
                                  [&name](const Fault& fault) { return fault.order.name == name; }),
                   m_faults.end());
}

void FaultyWires::powerDown(bool high) {
    if (!losesLevel("power-down")) {
        m_wires.powerDown(high);
    }
}

void FaultyWires::chipSelect(bool high) {
    if (!losesLevel("chip-select")) {
        m_wires.chipSelect(high);
    }
}

bool FaultyWires::losesLevel(const char* line) {
    const std::lock_guard lock(m_mutex);
    const auto fault = std::find_if(m_faults.begin(), m_faults.end(), [](const Fault& candidate) {
        return candidate.order.breaks == Breaks::PinsFail;
    });
    if (fault == m_faults.end()) {
        return false;
    }
    m_strikes.add(fault->order.name, QStringLiteral("a level of the %1 line is lost").arg(line));
    return true;
}

void FaultyWires::transfer(const std::uint8_t* sent, std::uint8_t* received, std::size_t length) {
    const Fate fate = fateOf(length);
    if (fate.delay.count() > 0) {
        std::this_thread::sleep_for(fate.delay);
    }
    if (fate.fails) {
        throw board::TransferFailed("the message fails on demand");
    }
    if (fate.corrupted && length > 0) {
        transferCorrupted(sent, received, length);
    } else {
        m_wires.transfer(sent, received, length);
    }
}

FaultyWires::Fate FaultyWires::fateOf(std::size_t length) {
    const std::lock_guard lock(m_mutex);
    Fate fate;
    for (Fault& fault : m_faults) {
        strike(fault, length, fate);
    }
    return fate;
}

void FaultyWires::strike(Fault& fault, std::size_t length, Fate& fate) {
    const FaultOrder& order = fault.order;
    if (!order.bursts || length > longestHeader) {
        ++fault.messages;
    } else {
        return;
    }
    const QString message =
        QStringLiteral("message %1, of %2 bytes, ").arg(fault.messages).arg(length);
    switch (order.breaks) {
    case Breaks::BusDead:
        fate.fails = true;
        break;
    case Breaks::BusFailsRandomly:
        if (fault.random() % everythingPercent >= order.number) {
            return;
        }
        fate.fails = true;
        break;
    case Breaks::BusFailsAt:
        if (fault.messages != order.number) {
            return;
        }
        fate.fails = true;
        break;
    case Breaks::BusCorrupts:
        if (fault.messages != order.number) {
            return;
        }
        fate.corrupted = true;
        m_strikes.add(order.name, message + "is corrupted");
        return;
    case Breaks::BusSlow:
        fate.delay += order.time;
        m_strikes.add(order.name, message + "comes late, as all that follow");
        return;
    default:
        return;
    }
    m_strikes.add(order.name, message + "fails");
}

void FaultyWires::transferCorrupted(const std::uint8_t* sent, std::uint8_t* received,
                                    std::size_t length) {
    std::vector<std::uint8_t> bytes(length);
    if (sent != nullptr) {
        bytes.assign(sent, sent + length);
    }
    bytes[length / 2] ^= wrongBit;
    m_wires.transfer(bytes.data(), received, length);
    if (received != nullptr) {
        received[length / 2] ^= wrongBit;
    }
}

} // namespace panel
