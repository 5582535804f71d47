#include "panelview.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace panel {

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
    paintAppearance(painter, rect(), m_picture, m_state);
    paintOutline(painter);
}

void PanelView::setOutline(const QRect& pixels) {
    m_outline = pixels;
    update();
}

// Of two colours, so that it shows on anything.
void PanelView::paintOutline(QPainter& painter) const {
    if (m_outline.isEmpty()) {
        return;
    }
    const QRect around(m_outline.topLeft() * m_zoom, m_outline.size() * m_zoom);
    painter.setPen(Qt::white);
    painter.drawRect(around.adjusted(-1, -1, 0, 0));
    painter.setPen(QPen(Qt::magenta, 1, Qt::DashLine));
    painter.drawRect(around.adjusted(-1, -1, 0, 0));
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
