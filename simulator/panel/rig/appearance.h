#pragma once

#include "controller.h"

#include <QImage>
#include <QString>

#include <optional>

class QPainter;

namespace panel {

constexpr QSize panelSize(480, 272);

// Why there is nothing to see on the panel.
struct Darkness {
    QString what; // for whoever looks at it: "The backlight is off"
    QString why;  // for whoever works on the program
};

// None if the panel shows its picture.
std::optional<Darkness> darkness(const controller::PanelState& state);

// What somebody in front of the panel sees: its picture as bright as the backlight makes it, or, on
// black, why there is none. The picture fills `area`, without smoothing. Painting text needs a
// QGuiApplication.
void paintAppearance(QPainter& painter, const QRect& area, const QImage& picture,
                     const controller::PanelState& state);

// The same as a picture of the panel's size.
QImage appearance(const QImage& picture, const controller::PanelState& state);

} // namespace panel
