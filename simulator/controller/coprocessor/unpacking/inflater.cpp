#include "inflater.h"

#include <array>
#include <utility>
#include <zlib.h>

namespace controller {

class Inflater::Stream {
public:
    Stream() { m_ready = inflateInit(&z) == Z_OK; }
    ~Stream() {
        if (m_ready) {
            inflateEnd(&z);
        }
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    bool isReady() const { return m_ready; }
    z_stream z{};

private:
    bool m_ready = false;
};

Inflater::Inflater(Output output)
    : m_stream(std::make_unique<Stream>()), m_output(std::move(output)) {}

Inflater::~Inflater() = default;

Inflater::State Inflater::take(const std::uint8_t* bytes, std::size_t count) {
    if (!m_stream->isReady()) {
        return State::Corrupt;
    }
    z_stream& z = m_stream->z;
    std::array<std::uint8_t, 4096> unpacked{};
    z.next_in = const_cast<std::uint8_t*>(bytes); // zlib's interface; it only reads
    z.avail_in = static_cast<uInt>(count);
    do {
        z.next_out = unpacked.data();
        z.avail_out = static_cast<uInt>(unpacked.size());
        const int result = inflate(&z, Z_NO_FLUSH);
        const std::size_t made = unpacked.size() - z.avail_out;
        if (made > 0) {
            m_output(unpacked.data(), made);
        }
        if (result == Z_STREAM_END) {
            return State::Finished;
        }
        if (result != Z_OK && result != Z_BUF_ERROR) {
            return State::Corrupt;
        }
    } while (z.avail_out == 0);
    return State::Hungry;
}

} // namespace controller
