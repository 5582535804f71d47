#pragma once

#include "controller.h"

#include <QPoint>
#include <QString>
#include <QStringList>

#include <map>
#include <vector>

namespace panel {

// How a script calls the place of a pixel: by the text that stands on what is touched there, if
// there is but one like it ("\"Ok\""), or else by its tag ("tag 3"), or else by the pixel itself
// ("339 28").
QString placeName(const controller::Controller& controller, QPoint pixel);

// A finger that goes down, perhaps slides, and goes up, as a script tells it. A slide counts as far
// as the application has noticed it: what it has not read, it cannot react to.
class Gesture {
public:
    void press(const controller::Controller& controller, QPoint pixel);
    void move(const controller::Controller& controller, QPoint pixel);
    // The application has read this tag while the finger was down.
    void tagRead(int tag);

    // The lines that tell all up to here and have not been taken; the finger stays down.
    QStringList takeLines();
    // The same, and the finger goes up.
    QStringList release();

    bool isDown() const { return m_down; }

private:
    void put(const controller::Controller& controller, QPoint pixel);

    std::map<int, QString> m_places; // where the finger has been, by tag
    std::vector<int> m_read;         // one after the other, none twice in a row
    std::size_t m_told = 0;          // how many of these
    QString m_placeOfPress;
    int m_under = 0; // the finger, now
    bool m_down = false;
    bool m_toldUnread = false; // the press, which nobody had read
};

} // namespace panel
