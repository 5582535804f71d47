#include "pixelformats.h"

#include <QColor>

namespace {

unsigned toFourBits(int value) {
    return (static_cast<unsigned>(value) * 15 + 127) / 255;
}

} // namespace

std::vector<std::uint8_t> toArgb4(const QImage& image) {
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            const unsigned alpha = toFourBits(qAlpha(pixel));
            // What cannot be seen is stored as zero, which compresses best.
            const unsigned colour = alpha == 0 ? 0
                                               : toFourBits(qRed(pixel)) << 8 |
                                                     toFourBits(qGreen(pixel)) << 4 |
                                                     toFourBits(qBlue(pixel));
            bytes.push_back(static_cast<std::uint8_t>(colour));
            bytes.push_back(static_cast<std::uint8_t>(alpha << 4 | colour >> 8));
        }
    }
    return bytes;
}

std::vector<std::uint8_t> toL4(const QImage& image) {
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x + 1 < image.width(); x += 2) {
            bytes.push_back(static_cast<std::uint8_t>(toFourBits(qAlpha(image.pixel(x, y))) << 4 |
                                                      toFourBits(qAlpha(image.pixel(x + 1, y)))));
        }
    }
    return bytes;
}
