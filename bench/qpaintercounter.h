#pragma once

#include <QImage>

#include <array>

// The counter screen drawn with QPainter, as a toolkit program would: what the display controller
// and its driver are measured against. `image` is 480 x 272.
void paintCounterScreen(QImage& image, const std::array<double, 4>& values);
