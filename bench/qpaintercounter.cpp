#include "qpaintercounter.h"

#include <QFont>
#include <QFontMetrics>
#include <QLinearGradient>
#include <QPainter>
#include <QPolygon>

namespace {

const QColor ink(0x19, 0x19, 0x0C);
const QColor face(0x00, 0xA1, 0xDD);
const QColor green(0x1D, 0xCC, 0x37);
const QColor orange(0xF2, 0x64, 0x21);

QFont fontOfHeight(int pixels) {
    QFont font(QStringLiteral("Sans"));
    font.setPixelSize(pixels);
    return font;
}

void paintBackground(QPainter& painter) {
    QLinearGradient gradient(21, 13, 455, 268);
    gradient.setColorAt(0, QColor(0xCA, 0xCA, 0xCA));
    gradient.setColorAt(1, QColor(0xF3, 0xF3, 0xF3));
    painter.fillRect(0, 0, 480, 272, gradient);
}

void paintButtons(QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(face);
    for (const int x : {319, 374, 429}) {
        painter.drawRoundedRect(x, 8, 40, 40, 4, 4);
    }
    painter.setPen(QPen(ink, 2));
    for (const int y : {20, 28, 36}) {
        painter.drawLine(435, y, 463, y);
    }
    painter.drawLine(377, 45, 411, 45);
    const std::array<QRect, 3> bars = {QRect(379, 27, 9, 18), QRect(390, 13, 9, 32),
                                       QRect(401, 19, 9, 26)};
    for (const QRect& bar : bars) {
        painter.fillRect(bar, ink);
        painter.fillRect(bar.adjusted(2, 2, -2, -1), orange);
    }
    painter.setBrush(green);
    painter.drawPolygon(QPolygon({{332, 39}, {350, 28}, {332, 17}}));
}

void paintChannel(QPainter& painter, int channel, double value) {
    const int left = 10 + 235 * (channel % 2);
    const int top = 58 + 107 * (channel / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(face);
    painter.drawPolygon(QPolygon({{left + 2, top + 2}, {left + 50, top}, {left, top + 50}}));
    painter.setPen(QPen(ink, 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(left, top, 225, 97);
    painter.drawLine(left + 50, top, left, top + 50);
    painter.setFont(fontOfHeight(18));
    painter.drawText(QRect(left + 3, top + 3, 20, 26), Qt::AlignCenter, QString::number(channel));
    painter.setFont(fontOfHeight(37));
    painter.drawText(QRect(left, top, 209, 97), Qt::AlignRight | Qt::AlignVCenter,
                     QStringLiteral("%1").arg(value, 6, 'g', 4));
}

} // namespace

void paintCounterScreen(QImage& image, const std::array<double, 4>& values) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBackground(painter);
    painter.setPen(ink);
    painter.setFont(fontOfHeight(27));
    painter.drawText(QRect(20, 8, 280, 40), Qt::AlignCenter, QStringLiteral("COUNTER MODE"));
    paintButtons(painter);
    for (int channel = 0; channel < 4; ++channel) {
        paintChannel(painter, channel, values[static_cast<std::size_t>(channel)]);
    }
}
