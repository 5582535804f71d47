#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace controller {

// Unpacks one zlib stream that comes in pieces.
class Inflater {
public:
    using Output = std::function<void(const std::uint8_t* bytes, std::size_t count)>;
    enum class State : std::uint8_t { Hungry, Finished, Corrupt };

    explicit Inflater(Output output);
    ~Inflater();
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    // Takes the next bytes; those behind the stream's end are left alone.
    State take(const std::uint8_t* bytes, std::size_t count);

private:
    class Stream;
    std::unique_ptr<Stream> m_stream;
    Output m_output;
};

} // namespace controller
