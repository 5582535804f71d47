#include "logo.h"

#include "dlwords.h"

#include <algorithm>

namespace controller {

void Logo::draw(Words& words, std::uint32_t frame) const {
    words.push_back(dl::clearColorRgb(0xFFFFFF));
    words.push_back(dl::clear(true, true, true));
    const int width = m_machine.pictureWidth() * subpixels;
    const int height = m_machine.pictureHeight() * subpixels;
    const int largest = height / 4;
    const int radius =
        static_cast<int>(std::min(frame, frames)) * largest / static_cast<int>(frames);
    Painter painter(words, m_machine.generation);
    painter.color(m_color);
    painter.disc({{width / 2, height / 2}, radius});
}

} // namespace controller
