#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace fuzz {

// Takes a fuzzer's input apart. Beyond its end everything is 0.
class Input {
public:
    Input(const std::uint8_t* bytes, std::size_t size) : m_next(bytes), m_end(bytes + size) {}

    bool atEnd() const { return m_next == m_end; }
    std::uint8_t byte() { return atEnd() ? std::uint8_t{0} : *m_next++; }
    // `count` bytes, the lowest first.
    std::uint32_t number(unsigned count) {
        std::uint32_t result = 0;
        for (unsigned i = 0; i < count; ++i) {
            result |= static_cast<std::uint32_t>(byte()) << 8U * i;
        }
        return result;
    }
    // At most `most` bytes: fewer at the end.
    std::vector<std::uint8_t> bytes(std::size_t most) {
        const std::size_t count = std::min(most, static_cast<std::size_t>(m_end - m_next));
        std::vector<std::uint8_t> result(m_next, m_next + count);
        m_next += count;
        return result;
    }

private:
    const std::uint8_t* m_next;
    const std::uint8_t* m_end;
};

// A finding: what must hold does not.
inline void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

} // namespace fuzz
