#include "imageloader.h"

#include "commandfault.h"
#include "dlwords.h"

#include <utility>

namespace controller {

namespace {

// What unpacking a pixel costs.
constexpr std::int64_t pixelWork = 30;
constexpr std::uint8_t pngFirstByte = 0x89;

std::uint32_t bitmapFormat(Image::Format format) {
    switch (format) {
    case Image::Format::Rgb565:
        return format::Rgb565;
    case Image::Format::Argb4:
        return format::Argb4;
    case Image::Format::Paletted565:
        return format::Paletted565;
    case Image::Format::Paletted4444:
        return format::Paletted4444;
    case Image::Format::L8:
        break;
    }
    return format::L8;
}

} // namespace

Image ImageLoader::unpack(const std::vector<std::uint8_t>& file, std::uint32_t options) const {
    const std::size_t mostPixels = m_machine.memory.layout().general.size;
    const bool isPng = !file.empty() && file[0] == pngFirstByte;
    if (isPng && m_machine.generation == Generation::E1) {
        fault("E1 loads no PNG");
    }
    ImageResult result =
        isPng ? unpackPng(file, mostPixels) : unpackJpeg(file, (options & mono) != 0, mostPixels);
    if (!result.error.empty()) {
        fault(result.error);
    }
    return std::move(result.image);
}

std::uint32_t ImageLoader::load(const std::vector<std::uint8_t>& file, std::uint32_t address,
                                std::uint32_t options) {
    const Image image = unpack(file, options);
    m_machine.budget.spend(pixelWork * static_cast<std::int64_t>(image.pixels.size()));
    const std::size_t memory = m_machine.memory.layout().general.size;
    const std::size_t bytes = image.palette.size() + image.pixels.size();
    if (address > memory || bytes > memory - address) {
        fault("image does not fit general memory");
    }
    const auto pixels = address + static_cast<std::uint32_t>(image.palette.size());
    m_machine.bus.writeBytes(address, image.palette.data(), image.palette.size());
    m_machine.bus.writeBytes(pixels, image.pixels.data(), image.pixels.size());
    m_properties = {address, image.width, image.height};
    if (!(options & noList)) {
        show(image, address, (options & fullScreen) != 0);
    }
    return pixels + static_cast<std::uint32_t>(image.pixels.size());
}

void ImageLoader::show(const Image& image, std::uint32_t address, bool full) {
    const auto pixels = address + static_cast<std::uint32_t>(image.palette.size());
    const std::uint32_t format = bitmapFormat(image.format);
    const std::uint32_t stride = image.width * image.bytesPerPixel();
    const auto panelWidth = static_cast<std::uint32_t>(m_machine.pictureWidth());
    const auto panelHeight = static_cast<std::uint32_t>(m_machine.pictureHeight());
    std::uint32_t factor = 1;
    while (full && image.width * factor * 2 <= panelWidth &&
           image.height * factor * 2 <= panelHeight) {
        factor *= 2;
    }
    const std::uint32_t width = image.width * factor;
    const std::uint32_t height = image.height * factor;
    ListWriter& list = m_machine.list;
    if (!image.palette.empty()) {
        list.put(dl::paletteSource(address));
    }
    list.put(dl::bitmapSource(pixels));
    list.put(dl::bitmapLayout(format, stride, image.height));
    list.put(dl::bitmapSize(width, height));
    if (m_machine.generation != Generation::E1) {
        list.put(dl::bitmapLayoutH(stride, image.height));
        list.put(dl::bitmapSizeH(width, height));
    }
    if (factor > 1) {
        const auto step = static_cast<std::int32_t>(256 / factor);
        list.put(dl::bitmapTransform(0, step));
        list.put(dl::bitmapTransform(4, step));
    }
}

} // namespace controller
