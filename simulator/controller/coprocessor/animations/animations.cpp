#include "animations.h"

namespace controller {

void Animations::stop() {
    m_overlay.reset();
    m_screenSaver.reset();
    m_sketch.reset();
}

void Animations::frameEnded() {
    for (Animation* animation :
         {m_screenSaver.get(), m_sketch.get(), static_cast<Animation*>(m_overlay.get())}) {
        if (animation) {
            animation->frameEnded();
        }
    }
}

} // namespace controller
