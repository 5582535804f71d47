#include "image.h"

#include <csetjmp>
#include <cstdio>
#include <jpeglib.h>

namespace controller {

namespace {

// Reads with the library, which is left by longjmp when it fails: nothing with a destructor lives
// in the functions that it leaves.
class JpegReader {
public:
    explicit JpegReader(const std::vector<std::uint8_t>& file) : m_file(file) {
        m_jpeg.err = jpeg_std_error(&m_errors.manager);
        m_errors.manager.error_exit = failed;
        m_errors.manager.output_message = ignored;
    }
    ~JpegReader() { jpeg_destroy_decompress(&m_jpeg); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    bool readHead() {
        if (setjmp(m_errors.escape)) {
            return false;
        }
        jpeg_create_decompress(&m_jpeg);
        jpeg_mem_src(&m_jpeg, m_file.data(), static_cast<unsigned long>(m_file.size()));
        return jpeg_read_header(&m_jpeg, TRUE) == JPEG_HEADER_OK;
    }
    bool begin(bool mono) {
        if (setjmp(m_errors.escape)) {
            return false;
        }
        m_jpeg.out_color_space = mono ? JCS_GRAYSCALE : JCS_RGB;
        m_jpeg.dct_method = JDCT_ISLOW; // the same on every machine
        jpeg_start_decompress(&m_jpeg);
        return true;
    }
    bool readLine(std::uint8_t* samples) {
        if (setjmp(m_errors.escape)) {
            return false;
        }
        JSAMPROW row = samples;
        return jpeg_read_scanlines(&m_jpeg, &row, 1) == 1;
    }
    // False when something was wrong that the library could mend.
    bool end() {
        if (setjmp(m_errors.escape)) {
            return false;
        }
        jpeg_finish_decompress(&m_jpeg);
        return m_errors.manager.num_warnings == 0;
    }

    const jpeg_decompress_struct& head() const { return m_jpeg; }

private:
    struct Errors {
        jpeg_error_mgr manager{}; // first: the library knows its address
        jmp_buf escape{};
    };

    [[noreturn]] static void failed(j_common_ptr jpeg) {
        std::longjmp(reinterpret_cast<Errors*>(jpeg->err)->escape, 1);
    }
    static void ignored(j_common_ptr) {}

    const std::vector<std::uint8_t>& m_file;
    jpeg_decompress_struct m_jpeg{};
    Errors m_errors;
};

} // namespace

ImageResult unpackJpeg(const std::vector<std::uint8_t>& file, bool mono, std::size_t mostPixels) {
    JpegReader reader(file);
    if (!reader.readHead()) {
        return {{}, "damaged JPEG"};
    }
    const jpeg_decompress_struct& head = reader.head();
    if (head.progressive_mode || head.arith_code || head.data_precision != 8 ||
        (head.num_components != 1 && head.num_components != 3)) {
        return {{}, "JPEG is not a baseline one"};
    }
    ImageResult result;
    Image& image = result.image;
    image.format = mono ? Image::Format::L8 : Image::Format::Rgb565;
    image.width = head.image_width;
    image.height = head.image_height;
    if (std::uint64_t{image.width} * image.height > mostPixels) {
        return {{}, "image does not fit general memory"};
    }
    if (!reader.begin(mono)) {
        return {{}, "damaged JPEG"};
    }
    std::vector<std::uint8_t> line(std::size_t{image.width} * (mono ? 1 : 3));
    for (std::uint32_t y = 0; y < image.height; ++y) {
        if (!reader.readLine(line.data())) {
            return {{}, "damaged JPEG"};
        }
        for (std::size_t i = 0; i < line.size(); i += mono ? 1 : 3) {
            if (mono) {
                image.pixels.push_back(line[i]);
            } else {
                detail::appendRgb565(image.pixels, line[i], line[i + 1], line[i + 2]);
            }
        }
    }
    if (!reader.end()) {
        return {{}, "damaged JPEG"};
    }
    return result;
}

} // namespace controller
