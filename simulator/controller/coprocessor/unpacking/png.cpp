#include "image.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <optional>
#include <png.h>
#include <zlib.h>

namespace controller {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t pngSignatureBytes = 8;
constexpr std::size_t chunkFrame = 12; // length, name and checksum
constexpr std::size_t paletteEntries = 256;

std::uint32_t bigEndian(const std::uint8_t* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) << 24U |
           static_cast<std::uint32_t>(bytes[1]) << 16U |
           static_cast<std::uint32_t>(bytes[2]) << 8U | static_cast<std::uint32_t>(bytes[3]);
}

// The file with only the chunks that pixels come from, so that nothing else is unpacked; nothing
// when a checksum is wrong or the file ends early.
std::optional<Bytes> essence(const Bytes& file) {
    constexpr const char* kept[] = {"IHDR", "PLTE", "tRNS", "IDAT", "IEND"};
    if (file.size() < pngSignatureBytes) {
        return std::nullopt;
    }
    Bytes result(file.begin(), file.begin() + pngSignatureBytes);
    for (std::size_t at = pngSignatureBytes; at + chunkFrame <= file.size();) {
        const std::uint32_t length = bigEndian(&file[at]);
        if (length > file.size() - at - chunkFrame) {
            return std::nullopt;
        }
        const std::uint8_t* name = &file[at + 4];
        const uLong checksum = crc32(crc32(0, nullptr, 0), name, length + 4);
        if (checksum != bigEndian(name + 4 + length)) {
            return std::nullopt;
        }
        const auto isName = [name](const char* other) { return std::memcmp(name, other, 4) == 0; };
        if (std::any_of(std::begin(kept), std::end(kept), isName)) {
            result.insert(result.end(), &file[at], &file[at] + length + chunkFrame);
        }
        if (isName("IEND")) {
            return result;
        }
        at += length + chunkFrame;
    }
    return std::nullopt;
}

// Reads with the library, which leaves by longjmp when it fails: nothing with a destructor lives in
// the functions that it leaves.
class PngReader {
public:
    explicit PngReader(const Bytes& file) : m_next(file.data()), m_left(file.size()) {
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, failed, warned);
        m_info = m_png ? png_create_info_struct(m_png) : nullptr;
    }
    ~PngReader() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    bool readHead() {
        if (!m_info || setjmp(png_jmpbuf(m_png))) {
            return false;
        }
        png_set_read_fn(m_png, this, read);
        png_read_info(m_png, m_info);
        png_set_interlace_handling(m_png);
        png_read_update_info(m_png, m_info);
        return true;
    }
    bool readRows(png_bytep* rows) {
        if (setjmp(png_jmpbuf(m_png))) {
            return false;
        }
        png_read_image(m_png, rows);
        return true;
    }

    std::uint32_t width() const { return png_get_image_width(m_png, m_info); }
    std::uint32_t height() const { return png_get_image_height(m_png, m_info); }
    int depth() const { return png_get_bit_depth(m_png, m_info); }
    int colorType() const { return png_get_color_type(m_png, m_info); }
    std::size_t rowBytes() const { return png_get_rowbytes(m_png, m_info); }
    // The palette, in one of the two formats.
    void takePalette(Image& image) const;

private:
    static void read(png_structp png, png_bytep bytes, std::size_t count) {
        auto* self = static_cast<PngReader*>(png_get_io_ptr(png));
        if (count > self->m_left) {
            png_error(png, "ends early");
        }
        std::memcpy(bytes, self->m_next, count);
        self->m_next += count;
        self->m_left -= count;
    }
    [[noreturn]] static void failed(png_structp png, png_const_charp) { png_longjmp(png, 1); }
    static void warned(png_structp, png_const_charp) {}

    const std::uint8_t* m_next;
    std::size_t m_left;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
};

void PngReader::takePalette(Image& image) const {
    png_colorp colors = nullptr;
    int colorCount = 0;
    png_get_PLTE(m_png, m_info, &colors, &colorCount);
    png_bytep alphas = nullptr;
    int alphaCount = 0;
    const bool hasAlpha =
        png_get_tRNS(m_png, m_info, &alphas, &alphaCount, nullptr) != 0 && alphas != nullptr;
    image.format = hasAlpha ? Image::Format::Paletted4444 : Image::Format::Paletted565;
    for (int i = 0; i < colorCount; ++i) {
        const png_color& color = colors[i];
        if (hasAlpha) {
            const unsigned alpha = i < alphaCount ? alphas[i] : 255;
            detail::appendArgb4(image.palette, alpha, color.red, color.green, color.blue);
        } else {
            detail::appendRgb565(image.palette, color.red, color.green, color.blue);
        }
    }
    image.palette.resize(2 * paletteEntries);
}

// Appends one line of the file's samples as pixels.
void appendLine(Image& image, int colorType, const std::uint8_t* samples) {
    for (std::uint32_t x = 0; x < image.width; ++x) {
        switch (colorType) {
        case PNG_COLOR_TYPE_RGB:
            detail::appendRgb565(image.pixels, samples[0], samples[1], samples[2]);
            samples += 3;
            break;
        case PNG_COLOR_TYPE_RGB_ALPHA:
            detail::appendArgb4(image.pixels, samples[3], samples[0], samples[1], samples[2]);
            samples += 4;
            break;
        case PNG_COLOR_TYPE_GRAY_ALPHA:
            detail::appendArgb4(image.pixels, samples[1], samples[0], samples[0], samples[0]);
            samples += 2;
            break;
        default:
            image.pixels.push_back(*samples++);
            break;
        }
    }
}

} // namespace

ImageResult unpackPng(const std::vector<std::uint8_t>& file, std::size_t mostPixels) {
    const std::optional<Bytes> chunks = essence(file);
    if (!chunks) {
        return {{}, "damaged PNG"};
    }
    PngReader reader(*chunks);
    if (!reader.readHead()) {
        return {{}, "damaged PNG"};
    }
    if (reader.depth() != 8) {
        return {{}, "PNG is not eight bits deep"};
    }
    ImageResult result;
    Image& image = result.image;
    image.width = reader.width();
    image.height = reader.height();
    if (std::uint64_t{image.width} * image.height > mostPixels) {
        return {{}, "image does not fit general memory"};
    }
    switch (reader.colorType()) {
    case PNG_COLOR_TYPE_PALETTE:
        reader.takePalette(image);
        break;
    case PNG_COLOR_TYPE_RGB:
        image.format = Image::Format::Rgb565;
        break;
    case PNG_COLOR_TYPE_GRAY:
        image.format = Image::Format::L8;
        break;
    default:
        image.format = Image::Format::Argb4;
        break;
    }
    Bytes samples(reader.rowBytes() * image.height);
    std::vector<png_bytep> rows;
    for (std::uint32_t y = 0; y < image.height; ++y) {
        rows.push_back(samples.data() + y * reader.rowBytes());
    }
    if (!reader.readRows(rows.data())) {
        return {{}, "damaged PNG"};
    }
    for (const png_bytep row : rows) {
        appendLine(image, reader.colorType(), row);
    }
    return result;
}

} // namespace controller
