#pragma once

#include <cstdint>
#include <deque>
#include <string>

// What the finger is on, poll by poll, when it taps the keypad's keys and then the tag `last`.
inline std::deque<std::uint32_t> typing(const std::string& keys, std::uint32_t last) {
    std::deque<std::uint32_t> tags;
    for (const char key : keys) {
        tags.push_back(static_cast<std::uint32_t>(key));
        tags.push_back(0);
    }
    tags.push_back(last);
    tags.push_back(0);
    return tags;
}
