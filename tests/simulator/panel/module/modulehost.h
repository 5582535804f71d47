#pragma once

#include "displaymodule.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace panel {

using Bytes = std::vector<std::uint8_t>;

// A display module and what an application does on its wires. The scan runs in real time.
class ModuleHost {
protected:
    static constexpr auto generous = std::chrono::seconds(60);

    void send(const Bytes& bytes) {
        m_module.chipSelect(false);
        m_module.transfer(bytes.data(), nullptr, bytes.size());
        m_module.chipSelect(true);
    }

    Bytes read(std::uint32_t address, std::size_t count) {
        const Bytes header{static_cast<std::uint8_t>(address >> 16),
                           static_cast<std::uint8_t>(address >> 8),
                           static_cast<std::uint8_t>(address), 0};
        Bytes received(count);
        m_module.chipSelect(false);
        m_module.transfer(header.data(), nullptr, header.size());
        m_module.transfer(nullptr, received.data(), received.size());
        m_module.chipSelect(true);
        return received;
    }

    void boot() {
        m_module.powerDown(true);
        m_module.chipSelect(true);
        send({0, 0, 0});
        const auto start = std::chrono::steady_clock::now();
        while (read(0x302020, 1) != Bytes{0} || read(0x302000, 1) != Bytes{0x7C}) {
            ASSERT_LT(std::chrono::steady_clock::now() - start, generous);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    // The scan runs in real time.
    void waitForFrames(std::uint32_t count) {
        const auto start = std::chrono::steady_clock::now();
        while (m_module.counts().frames < count) {
            ASSERT_LT(std::chrono::steady_clock::now() - start, generous);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            m_module.advance();
        }
    }

    DisplayModule m_module{controller::Generation::E3};
};

} // namespace panel
