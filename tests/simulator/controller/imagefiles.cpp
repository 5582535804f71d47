#include "imagefiles.h"

#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <string>
#include <zlib.h>

namespace controllertest {

namespace {

void putBigEndian(Bytes& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

void putChunk(Bytes& file, const std::string& name, const Bytes& content) {
    putBigEndian(file, static_cast<std::uint32_t>(content.size()));
    Bytes named(name.begin(), name.end());
    named.insert(named.end(), content.begin(), content.end());
    file.insert(file.end(), named.begin(), named.end());
    putBigEndian(
        file, static_cast<std::uint32_t>(crc32(0, named.data(), static_cast<uInt>(named.size()))));
}

} // namespace

Bytes pngFile(const PngParts& parts) {
    Bytes file = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    Bytes head;
    putBigEndian(head, parts.width);
    putBigEndian(head, parts.height);
    head.insert(head.end(), {parts.depth, parts.kind, 0, 0, 0});
    putChunk(file, "IHDR", head);
    // Not a mark of the end, though it looks like one.
    putChunk(file, "tEXt", {'a', 0, 'I', 'E', 'N', 'D', 1, 2, 3, 4});
    if (!parts.palette.empty()) {
        putChunk(file, "PLTE", parts.palette);
    }
    if (!parts.alphas.empty()) {
        putChunk(file, "tRNS", parts.alphas);
    }
    Bytes lines;
    const std::size_t stride = parts.height == 0 ? 0 : parts.samples.size() / parts.height;
    for (std::uint32_t y = 0; y < parts.height; ++y) {
        lines.push_back(0); // no filter
        const auto start = parts.samples.begin() + static_cast<std::ptrdiff_t>(y * stride);
        lines.insert(lines.end(), start, start + static_cast<std::ptrdiff_t>(stride));
    }
    putChunk(file, "IDAT", compressed(lines));
    putChunk(file, "IEND", {});
    return file;
}

Bytes jpegFile(std::uint32_t width, std::uint32_t height, const Bytes& samples, bool progressive) {
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* made = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &made, &size);
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = samples.size() == std::size_t{width} * height ? 1 : 3;
    jpeg.in_color_space = jpeg.input_components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 100, TRUE);
    if (progressive) {
        jpeg_simple_progression(&jpeg);
    }
    jpeg_start_compress(&jpeg, TRUE);
    // A preview as cameras add: a JPEG's marks inside of a segment.
    const std::uint8_t preview[] = {0xFF, 0xD8, 0xFF, 0xD9};
    jpeg_write_marker(&jpeg, JPEG_APP0 + 1, preview, sizeof preview);
    const std::size_t stride = std::size_t{width} * static_cast<unsigned>(jpeg.input_components);
    for (std::uint32_t y = 0; y < height; ++y) {
        auto* row = const_cast<JSAMPLE*>(samples.data() + y * stride); // it only reads
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    Bytes file(made, made + size);
    std::free(made);
    jpeg_destroy_compress(&jpeg);
    return file;
}

} // namespace controllertest
