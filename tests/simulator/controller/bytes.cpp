#include "bytes.h"

#include <zlib.h>

namespace controllertest {

Bytes compressed(const Bytes& bytes) {
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    Bytes result(size);
    compress(result.data(), &size, bytes.data(), static_cast<uLong>(bytes.size()));
    result.resize(size);
    return result;
}

} // namespace controllertest
