#include "mediafifo.h"

#include "commandfault.h"

#include <algorithm>
#include <utility>

namespace controller {

namespace {

// The coprocessor's words about it, from MemoryLayout::mediaFifo on.
constexpr std::uint32_t readWord = 0;
constexpr std::uint32_t writeWord = 4;
constexpr std::uint32_t baseWord = 8; // E3, as the size
constexpr std::uint32_t sizeWord = 12;

// Bytes that are read between looks at what is left of the slice of time.
constexpr std::uint32_t pieceBytes = 4096;

} // namespace

void MediaFifo::set(std::uint32_t base, std::uint32_t size) {
    const std::uint32_t memory = m_machine.memory.layout().general.size;
    if (size == 0 || size % 4 != 0 || base % 4 != 0 || base >= memory || size > memory - base) {
        fault("media FIFO outside of general memory or not of whole words");
    }
    m_base = base;
    m_size = size;
    const std::uint32_t words = m_machine.memory.layout().mediaFifo;
    m_machine.memory.write32(words + readWord, 0);
    m_machine.memory.write32(words + writeWord, 0);
    if (m_machine.generation == Generation::E3) {
        m_machine.memory.write32(words + baseWord, base);
        m_machine.memory.write32(words + sizeWord, size);
    }
}

std::uint32_t MediaFifo::offset(std::uint32_t word) const {
    return m_machine.memory.read32(m_machine.memory.layout().mediaFifo + word) % m_size;
}

Task MediaFifo::reader(DataSink sink) {
    if (m_size == 0) {
        fault("there is no media FIFO");
    }
    return [this, sink = std::move(sink)] { return read(sink); };
}

Progress MediaFifo::read(const DataSink& sink) {
    const std::uint32_t write = offset(writeWord);
    std::uint32_t at = offset(readWord);
    const std::uint32_t piece = std::min((write + m_size - at) % m_size, pieceBytes);
    bool complete = false;
    std::uint32_t taken = 0;
    for (; taken < piece && !complete; ++taken) {
        const std::uint8_t byte = m_machine.memory.read8(m_base + at);
        at = (at + 1) % m_size;
        complete = sink(&byte, 1);
    }
    while (complete && at % 4 != 0 && at != write) {
        at = (at + 1) % m_size;
    }
    m_machine.budget.spend(4 * std::int64_t{taken});
    m_machine.memory.write32(m_machine.memory.layout().mediaFifo + readWord, at);
    if (complete) {
        return Progress::Done;
    }
    return taken > 0 ? Progress::Working : Progress::Waiting;
}

} // namespace controller
