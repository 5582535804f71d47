#include "bitmap.h"

#include "displaylist.h"
#include "texels.h"

namespace controller {

namespace {

// Sizes are in two words; none at all means the largest.
int wholeSize(Generation generation, std::uint32_t low, std::uint32_t high) {
    const std::uint32_t size = high << 9 | low;
    if (size != 0) {
        return static_cast<int>(size);
    }
    return generation == Generation::E1 ? 512 : 2048;
}

} // namespace

Bitmap bitmapOf(Generation generation, const BitmapHandle& handle, std::uint32_t cell) {
    Bitmap bitmap;
    const bool isExternal = handle.format == format::External && generation == Generation::E3;
    bitmap.format = isExternal ? handle.extendedFormat : handle.format;
    bitmap.bitsPerTexel = bitsPerTexel(generation, bitmap.format);
    bitmap.stride = handle.strideHigh << 10 | handle.stride;
    if (bitmap.bitsPerTexel != 0) {
        bitmap.width = static_cast<int>(bitmap.stride * 8 / bitmap.bitsPerTexel);
    }
    bitmap.height = wholeSize(generation, handle.layoutHeight, handle.layoutHeightHigh);
    bitmap.address =
        handle.source + cell * bitmap.stride * static_cast<std::uint32_t>(bitmap.height);
    bitmap.bilinear = handle.bilinear;
    bitmap.repeatX = handle.repeatX;
    bitmap.repeatY = handle.repeatY;
    bitmap.windowWidth = wholeSize(generation, handle.width, handle.widthHigh);
    bitmap.windowHeight = wholeSize(generation, handle.height, handle.heightHigh);
    return bitmap;
}

} // namespace controller
