#pragma once

#include "appearance.h"

#include <QWidget>

namespace panel {

// Shows what somebody in front of the panel sees in whole screen pixels per panel pixel, and takes
// the mouse for the finger.
class PanelView : public QWidget {
    Q_OBJECT

public:
    explicit PanelView(QWidget* parent = nullptr);

    void setZoom(int zoom); // 1 to 4
    int zoom() const { return m_zoom; }
    void show(const QImage& picture, const controller::PanelState& state);

    // Draws a frame around these pixels of the panel; empty: none.
    void setOutline(const QRect& pixels);

signals:
    void touched(QPoint pixel); // finger down at, or moved to, this panel pixel
    void released();
    void hovered(QPoint pixel); // the mouse is over this panel pixel, finger down or not
    void left();                // it is no longer over the panel

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QPoint pixelAt(QPoint position) const;
    void paintOutline(QPainter& painter) const;

    int m_zoom = 1;
    QImage m_picture;
    QRect m_outline;
    controller::PanelState m_state;
};

} // namespace panel
