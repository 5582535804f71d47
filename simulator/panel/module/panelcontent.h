#pragma once

#include "controller.h"

#include <QPoint>
#include <QRect>
#include <QString>

#include <optional>
#include <vector>

// What stands on the panel, for those who look for it there.
namespace panel {

struct PanelText {
    QString text; // without the blanks at its ends
    QRect box;    // of the text, panel pixels
};

// Top to bottom, left to right, without those that are blank.
std::vector<PanelText> textsOn(const controller::Controller& controller);

// Of the pixel in the frame now shown: 0 outside of everything that can be touched.
int tagAt(const controller::Controller& controller, QPoint pixel);

// The number of places that carry the tag, pixels next to each other being one, and a pixel well
// inside the first of them.
struct TaggedPlaces {
    int count = 0;
    QPoint first;
};
TaggedPlaces placesOfTag(const controller::Controller& controller, int tag);

// All tags on the panel but 0, in order.
std::vector<int> tagsOn(const controller::Controller& controller);

} // namespace panel
