#include "panelview.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace panel {

namespace {

constexpr int fullBacklight = 128;

} // namespace

PanelView::PanelView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::PointingHandCursor);
    setMouseTracking(true);
    setZoom(m_zoom);
}

void PanelView::setZoom(int zoom) {
    m_zoom = zoom;
    setFixedSize(panelSize * zoom);
    update();
}

void PanelView::show(const QImage& picture, const controller::PanelState& state) {
    m_picture = picture;
    m_state = state;
    update();
}

void PanelView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (m_picture.isNull() || !m_state.scanning || !m_state.displayOn) {
        paintDark(painter);
        return;
    }
    painter.drawImage(rect(), m_picture);
    const int dark = fullBacklight - std::clamp(m_state.backlight, 0, fullBacklight);
    painter.fillRect(rect(), QColor(0, 0, 0, dark * 255 / fullBacklight));
}

void PanelView::paintDark(QPainter& painter) const {
    painter.fillRect(rect(), Qt::black);
    painter.setPen(Qt::gray);
    painter.drawText(rect(), Qt::AlignCenter,
                     m_state.scanning ? tr("The display is switched off")
                                      : tr("The panel gets no picture: the controller is not "
                                           "running or its pixel clock stands still"));
}

QPoint PanelView::pixelAt(QPoint position) const {
    // Not QPoint's division, which rounds.
    return {std::clamp(position.x() / m_zoom, 0, panelSize.width() - 1),
            std::clamp(position.y() / m_zoom, 0, panelSize.height() - 1)};
}

void PanelView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        emit touched(pixelAt(event->pos()));
    }
}

void PanelView::mouseMoveEvent(QMouseEvent* event) {
    emit hovered(pixelAt(event->pos()));
    if ((event->buttons() & Qt::LeftButton) != 0) {
        emit touched(pixelAt(event->pos()));
    }
}

void PanelView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        emit released();
    }
}

void PanelView::leaveEvent(QEvent* /*event*/) {
    emit left();
}

} // namespace panel
