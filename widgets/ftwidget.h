#pragma once

#include "../eve_layer/Gpu_Hal.h"

#include <QObject>

#include <cstdint>

class QTimer;

// Base of every screen. exec() draws the screen and returns; from then on the screen lives on a
// single-shot timer of the event loop, which reads the touched tag, calls buttonPressed() and
// buttonReleased() and redraws when update() has asked for it, until terminate().
//
// A screen draws what never changes in setup(), once per exec(); the base keeps a copy of it in the
// controller's general memory and puts it in front of every frame, so that updateGUI() adds only
// what changes. A screen that only wants to be seen calls terminate() at the end of setup().
class FTWidget : public QObject {
    Q_OBJECT

public:
    // `host` is not owned and must outlive the screen. A screen without one, null here or later,
    // terminates at exec() or at its next pass and draws nothing.
    explicit FTWidget(Gpu_Hal_Context_t* host);

    virtual void setup() = 0;
    virtual void updateGUI();
    // A finger has come down on the item of this tag (1..254).
    virtual void buttonPressed(int tag);
    // The finger is gone. `tag` is the last one it was on, which need not be the one pressed.
    virtual void buttonReleased(int tag);

    // One pass: touch, redraw if asked for, timer. Called by exec() and by the timer.
    void loop();

    Gpu_Hal_Context_t* host() const { return m_host; }
    // Not from setup() or updateGUI(), which are drawing on the old one.
    void setHost(Gpu_Hal_Context_t* host) { m_host = host; }

    bool isStoped() const { return m_stopped; }

    // Milliseconds between two passes, 50 at first.
    int sleepTimer() const { return m_sleepTimer; }
    void setSleepTimer(int ms) { m_sleepTimer = ms; }

    // Whether passes read touches, false at first.
    bool keyProcessEnabled() const { return m_keyProcess; }
    void setKeyProcessEnabled(bool enabled) { m_keyProcess = enabled; }

    bool isButtonPressed(int tag) const { return m_pressedTag == tag; }

public slots:
    // Draws the screen, blocking until the coprocessor has done so, and starts its passes. May be
    // called again after terminate().
    void exec();
    // Ends the passes; the picture stays on the display.
    void terminate();
    // Asks for a redraw at the next pass; ignored after terminate().
    void update();

private:
    void processTouch();
    void redraw();

    Gpu_Hal_Context_t* m_host;
    bool m_stopped = false;
    int m_sleepTimer;
    QTimer* m_timer;
    bool m_updateRequested = false;
    bool m_keyProcess = false;
    int m_pressedTag = 0; // 0 when no button is held
    uint16_t m_staticDlSize = 0;
};
