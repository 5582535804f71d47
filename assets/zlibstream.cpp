#include "zlibstream.h"

#include <stdexcept>
#include <string>
#include <zlib.h>

namespace {

using Bytes = std::vector<std::uint8_t>;

// Blocks without content, from a byte boundary to a byte boundary. Their lengths (5 and 6 bytes,
// closed by 5 or 2) add up to every total from 20 bytes on.
const Bytes emptyStoredBlock = {0x00, 0x00, 0x00, 0xFF, 0xFF};
const Bytes emptyFixedAndStoredBlock = {0x02, 0x00, 0x00, 0x00, 0xFF, 0xFF};
const Bytes lastEmptyStoredBlock = {0x01, 0x00, 0x00, 0xFF, 0xFF};
const Bytes lastEmptyFixedBlock = {0x03, 0x00};

constexpr std::size_t checksumLength = 4;

void append(Bytes& stream, const Bytes& block) {
    stream.insert(stream.end(), block.begin(), block.end());
}

// Header and blocks of `data`, ending on a byte boundary with no last block yet.
Bytes openStream(const Bytes& data) {
    z_stream zlib{};
    if (deflateInit2(&zlib, Z_BEST_COMPRESSION, Z_DEFLATED, MAX_WBITS, MAX_MEM_LEVEL,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::runtime_error("zlib cannot be initialised");
    }
    Bytes stream(deflateBound(&zlib, static_cast<uLong>(data.size())) + 64);
    Bytes input = data; // zlib's interface is not const-correct
    zlib.next_in = input.data();
    zlib.avail_in = static_cast<uInt>(input.size());
    zlib.next_out = stream.data();
    zlib.avail_out = static_cast<uInt>(stream.size());
    const int result = deflate(&zlib, Z_SYNC_FLUSH);
    stream.resize(zlib.total_out);
    deflateEnd(&zlib);
    if (result != Z_OK) {
        throw std::runtime_error("zlib failed with status " + std::to_string(result));
    }
    return stream;
}

// Fills up with empty blocks, the last of them marked as last, to `padding` bytes. False when no
// combination of blocks has that length.
bool appendPadding(Bytes& stream, std::size_t padding) {
    for (const Bytes& last : {lastEmptyStoredBlock, lastEmptyFixedBlock}) {
        for (std::size_t sixes = 0; sixes < emptyStoredBlock.size(); ++sixes) {
            const std::size_t used = last.size() + sixes * emptyFixedAndStoredBlock.size();
            if (used > padding || (padding - used) % emptyStoredBlock.size() != 0) {
                continue;
            }
            for (std::size_t i = 0; i < sixes; ++i) {
                append(stream, emptyFixedAndStoredBlock);
            }
            for (std::size_t i = 0; i < (padding - used) / emptyStoredBlock.size(); ++i) {
                append(stream, emptyStoredBlock);
            }
            append(stream, last);
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<std::uint8_t> zlibStreamOfLength(const std::vector<std::uint8_t>& data,
                                             std::size_t length) {
    Bytes stream = openStream(data);
    const std::size_t shortest = stream.size() + lastEmptyFixedBlock.size() + checksumLength;
    if (length < shortest || !appendPadding(stream, length - stream.size() - checksumLength)) {
        throw std::runtime_error("needs " + std::to_string(shortest) + " to " +
                                 std::to_string(shortest + 18) + " bytes, has " +
                                 std::to_string(length) + ": simplify the drawing");
    }
    const auto checksum = static_cast<std::uint32_t>(
        adler32(adler32(0, nullptr, 0), data.data(), static_cast<uInt>(data.size())));
    for (const int shift : {24, 16, 8, 0}) {
        stream.push_back(static_cast<std::uint8_t>(checksum >> shift));
    }
    return stream;
}
