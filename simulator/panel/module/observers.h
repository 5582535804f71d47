#pragma once

#include "controller.h"

#include <algorithm>
#include <vector>

namespace panel {

// Passes on what a controller tells, in the order in which they were added.
class Observers : public controller::Observer {
public:
    void add(controller::Observer* observer) { m_observers.push_back(observer); }
    void remove(controller::Observer* observer) {
        m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), observer),
                          m_observers.end());
    }

    void frameScanned(std::uint32_t number, controller::Nanoseconds now) override {
        tell([&](Observer& o) { o.frameScanned(number, now); });
    }
    void listSwapped(controller::Nanoseconds now) override {
        tell([&](Observer& o) { o.listSwapped(now); });
    }
    void transactionEnded(const controller::Transaction& transaction) override {
        tell([&](Observer& o) { o.transactionEnded(transaction); });
    }
    void pinChanged(controller::Pin pin, bool high, controller::Nanoseconds now) override {
        tell([&](Observer& o) { o.pinChanged(pin, high, now); });
    }
    void powerLost() override {
        tell([&](Observer& o) { o.powerLost(); });
    }
    void commandTaken(const controller::RingCommand& command,
                      controller::Nanoseconds now) override {
        tell([&](Observer& o) { o.commandTaken(command, now); });
    }
    void listWordPut(std::size_t index, std::uint32_t word) override {
        tell([&](Observer& o) { o.listWordPut(index, word); });
    }
    void bytesWritten(std::uint32_t address, std::uint32_t count) override {
        tell([&](Observer& o) { o.bytesWritten(address, count); });
    }
    void bytesCopied(std::uint32_t destination, std::uint32_t source,
                     std::uint32_t count) override {
        tell([&](Observer& o) { o.bytesCopied(destination, source, count); });
    }
    void ringFed(std::uint32_t offset) override {
        tell([&](Observer& o) { o.ringFed(offset); });
    }
    void listsExchanged() override {
        tell([&](Observer& o) { o.listsExchanged(); });
    }
    void complained(const std::string& text) override {
        tell([&](Observer& o) { o.complained(text); });
    }

private:
    using Observer = controller::Observer;

    template<typename Event>
    void tell(Event event) {
        for (Observer* observer : m_observers) {
            event(*observer);
        }
    }

    std::vector<Observer*> m_observers;
};

} // namespace panel
