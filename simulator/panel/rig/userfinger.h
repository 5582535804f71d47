#pragma once

#include "heldtouch.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>

#include <deque>

namespace panel {

// The finger of a user, who is quick and does not know what the application has noticed: each touch
// is held until it has been, and what is done meanwhile comes after it, in order. An application
// that does not look at the touch gets a touch for a second.
class UserFinger : public QObject {
    Q_OBJECT

public:
    explicit UserFinger(DisplayModule& module) : m_touch(module) {}

    void touch(QPoint pixel); // down at, or moved to, this panel pixel
    void release();

    // Goes on with what waits; to be called often.
    void advance();

signals:
    // What has been done now, in the controller.
    void pressed(QPoint pixel);
    void moved(QPoint pixel);
    void lifted();

private:
    struct Event {
        bool down = false;
        QPoint pixel;
    };

    bool mayGoOn(const Event& next);
    void perform(const Event& event);

    HeldTouch m_touch;
    QElapsedTimer m_sinceLast; // press or release
    std::deque<Event> m_waiting;
};

} // namespace panel
