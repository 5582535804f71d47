#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <vector>

namespace soak {

// Random choices that are the same everywhere for the same seed: the standard library's engine is
// specified, its distributions are not.
class Randomness {
public:
    explicit Randomness(std::uint32_t seed) : m_engine(seed) {}

    int below(int limit) { // 0 to limit - 1; limit is at least 1
        return static_cast<int>(m_engine() % static_cast<std::uint32_t>(limit));
    }
    int between(int first, int last) { return first + below(last - first + 1); }
    bool percent(int chance) { return below(100) < chance; }
    // An index; each comes up as often as its weight says.
    std::size_t weighted(std::initializer_list<int> weights) {
        int sum = 0;
        for (const int weight : weights) {
            sum += weight;
        }
        int left = below(sum);
        std::size_t index = 0;
        for (const int weight : weights) {
            if (left < weight) {
                break;
            }
            left -= weight;
            ++index;
        }
        return index;
    }
    template<typename T>
    const T& oneOf(const std::vector<T>& choices) {
        return choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
    }

private:
    std::mt19937 m_engine;
};

} // namespace soak
