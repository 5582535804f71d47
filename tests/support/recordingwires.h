#pragma once

#include "virtualboard.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

// Writes down, one line each, what happens on a board's wires: "PD 0", "CS 1", "sends 0a0b",
// "receives 2" and, full duplex, "exchanges 0a". Every byte received is `answer`.
class RecordingWires : public board::Wires {
public:
    static constexpr std::uint8_t answer = 0x5A;

    void powerDown(bool high) override { add(high ? "PD 1" : "PD 0"); }
    void chipSelect(bool high) override { add(high ? "CS 1" : "CS 0"); }

    void transfer(const std::uint8_t* sent, std::uint8_t* received, std::size_t length) override {
        if (received != nullptr) {
            std::fill_n(received, length, answer);
        }
        const std::string verb = received != nullptr ? "exchanges " : "sends ";
        add(sent != nullptr ? verb + hex(sent, length) : "receives " + std::to_string(length));
        waitWhileHeld();
    }

    std::vector<std::string> log() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_log;
    }

    void clear() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_log.clear();
    }

    // Waits for the log to end with `line`; false if it has not within ten seconds.
    bool waitFor(const std::string& line) {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(10),
                                  [&] { return !m_log.empty() && m_log.back() == line; });
    }

    // While on, transfers do not end.
    void holdTransfers(bool hold) {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_hold = hold;
        m_changed.notify_all();
    }

private:
    static std::string hex(const std::uint8_t* bytes, std::size_t length) {
        constexpr const char* digits = "0123456789abcdef";
        std::string text;
        for (std::size_t i = 0; i < length; ++i) {
            text += digits[bytes[i] >> 4U];
            text += digits[bytes[i] & 0x0FU];
        }
        return text;
    }

    void add(std::string line) {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_log.push_back(std::move(line));
        m_changed.notify_all();
    }

    void waitWhileHeld() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_hold; });
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_log;
    bool m_hold = false;
};
