#include "userfinger.h"

namespace panel {

namespace {

constexpr qint64 patienceMs = 1000;

} // namespace

void UserFinger::touch(QPoint pixel) {
    // Of a slide that waits, only where it has got to counts.
    if (m_waiting.size() > 1 && m_waiting.back().down && m_waiting[m_waiting.size() - 2].down) {
        m_waiting.pop_back();
    }
    m_waiting.push_back({true, pixel});
    advance();
}

void UserFinger::release() {
    m_waiting.push_back({false, {}});
    advance();
}

void UserFinger::advance() {
    while (!m_waiting.empty() && mayGoOn(m_waiting.front())) {
        const Event event = m_waiting.front();
        m_waiting.pop_front();
        perform(event);
    }
}

bool UserFinger::mayGoOn(const Event& next) {
    const bool slides = next.down && m_touch.isDown();
    if (slides || !m_sinceLast.isValid() || m_sinceLast.hasExpired(patienceMs)) {
        return true;
    }
    return m_touch.isDown() ? m_touch.isTagRead() : m_touch.isNoticed();
}

void UserFinger::perform(const Event& event) {
    if (!event.down && !m_touch.isDown()) {
        return;
    }
    const bool slides = event.down && m_touch.isDown();
    if (event.down) {
        m_touch.touch(event.pixel.x(), event.pixel.y());
    } else {
        m_touch.release();
    }
    m_sinceLast.start();
    if (slides) {
        emit moved(event.pixel);
    } else if (event.down) {
        emit pressed(event.pixel);
    } else {
        emit lifted();
    }
}

} // namespace panel
