#pragma once

#include "controller.h"

#include <QImage>
#include <QWidget>

namespace panel {

// Shows a finished picture of the panel in whole screen pixels per panel pixel, as bright as the
// backlight makes it, and takes the mouse for the finger.
class PanelView : public QWidget {
    Q_OBJECT

public:
    explicit PanelView(QWidget* parent = nullptr);

    void setZoom(int zoom); // 1 to 4
    int zoom() const { return m_zoom; }
    void show(const QImage& picture, const controller::PanelState& state);

signals:
    void touched(QPoint pixel); // finger down at, or moved to, this panel pixel
    void released();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void touchAt(QPoint position);
    void paintDark(QPainter& painter) const;

    int m_zoom = 1;
    QImage m_picture;
    controller::PanelState m_state;
};

} // namespace panel
