#include "ftwidget.h"

#include "CoPro_Cmds.h"
#include "frames.h"
#include "touch.h"

#include <QTimer>

namespace {

constexpr uint32_t screenCopyAddress = 100000; // in the controller's general memory
constexpr int defaultLoopPeriodMs = 50;

} // namespace

FTWidget::FTWidget(Gpu_Hal_Context_t* host)
    : m_host(host), m_sleepTimer(defaultLoopPeriodMs), m_timer(new QTimer(this)) {
    m_timer->setSingleShot(true);
    connect(m_timer, &QTimer::timeout, this, &FTWidget::loop);
}

void FTWidget::updateGUI() {}

void FTWidget::buttonPressed(int /*tag*/) {
    update();
}

void FTWidget::buttonReleased(int /*tag*/) {
    update();
}

void FTWidget::exec() {
    m_updateRequested = true;
    m_stopped = false;
    if (!m_host) {
        terminate();
        return;
    }

    Gpu_CoCmd_Dlstart(m_host);
    setup();
    m_staticDlSize = saveStaticPicture(m_host, screenCopyAddress);
    showFrame(m_host);

    loop();
}

void FTWidget::terminate() {
    m_stopped = true;
}

void FTWidget::update() {
    if (!m_stopped) {
        m_updateRequested = true;
    }
}

void FTWidget::loop() {
    if (!m_host) {
        terminate();
    }
    if (m_stopped) {
        return;
    }
    if (m_keyProcess) {
        processTouch();
    }
    // A handler of the touch may just have terminated the screen or taken its host away.
    if (m_host && m_updateRequested && !m_stopped) {
        redraw();
    }
    m_timer->start(m_sleepTimer);
}

void FTWidget::processTouch() {
    const int tag = readTouchTag(m_host);
    const TouchChange change = touchChange(m_pressedTag, tag);
    if (change == TouchChange::Press) {
        buttonPressed(tag);
    } else if (change == TouchChange::Release) {
        buttonReleased(m_pressedTag);
    }
    m_pressedTag = tag;
}

void FTWidget::redraw() {
    m_updateRequested = false;
    startFrame(m_host, screenCopyAddress, m_staticDlSize);
    updateGUI();
    showFrame(m_host);
}
