#include "screensaver.h"

#include "dlwords.h"
#include "position.h"

namespace controller {

namespace {

// Back and forth between 0 and `range`, one step a frame.
int bounced(std::uint32_t frame, int range) {
    if (range <= 0) {
        return 0;
    }
    const int position = static_cast<int>(frame % (2U * static_cast<unsigned>(range)));
    return position < range ? position : 2 * range - position;
}

} // namespace

void ScreenSaver::frameEnded() {
    // A bitmap of about a third of the panel stays on it.
    const int x = bounced(m_frame, m_machine.pictureWidth() * 2 / 3);
    const int y = bounced(m_frame, m_machine.pictureHeight() * 2 / 3);
    ++m_frame;
    m_machine.registers.set(Register::Macro0, dl::vertex2f(x * subpixels, y * subpixels));
}

} // namespace controller
