#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

namespace controller {

// Bytes that are all 0 to begin with. What is never touched costs nothing.
class ZeroedBytes {
public:
    explicit ZeroedBytes(std::size_t size)
        : m_bytes(static_cast<std::uint8_t*>(std::calloc(size, 1))), m_size(size) {
        if (m_bytes == nullptr) {
            throw std::bad_alloc();
        }
    }

    std::uint8_t* data() { return m_bytes.get(); }
    std::size_t size() const { return m_size; }

private:
    struct Free {
        void operator()(std::uint8_t* bytes) const { std::free(bytes); }
    };

    std::unique_ptr<std::uint8_t, Free> m_bytes;
    std::size_t m_size;
};

} // namespace controller
