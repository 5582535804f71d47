#pragma once

#include "call.h"
#include "generation.h"

#include <cstddef>
#include <cstdint>

namespace controller {

// Puts a command together from the words that follow it in the ring:
//
//    Words --as many as the table says--> [Text --zero byte--> [FormatWords]] --> Complete
//
// Text is there for commands that have some, and words for its format when E3 is asked for that.
class CallReader {
public:
    CallReader(const CommandInfo& command, Generation generation);

    // The next word, and where in the ring it stands. Not when complete.
    void take(std::uint32_t word, std::uint32_t place);
    bool isComplete() const { return m_phase == Phase::Complete; }
    const Call& call() const { return m_call; }

private:
    enum class Phase : std::uint8_t { Words, Text, FormatWords, Complete };

    void takeText(std::uint32_t word);
    void wordsComplete();
    void textComplete();

    Generation m_generation;
    Phase m_phase = Phase::Words;
    Call m_call;
    std::size_t m_formatWords = 0; // expected
};

// The bytes of a ring word, in the order they were sent.
constexpr std::size_t wordBytes = 4;
constexpr std::uint8_t byteOf(std::uint32_t word, std::size_t index) {
    return static_cast<std::uint8_t>(word >> 8U * index);
}

} // namespace controller
