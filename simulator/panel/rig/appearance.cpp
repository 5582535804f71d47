#include "appearance.h"

#include <QObject>
#include <QPainter>

#include <algorithm>

namespace panel {

namespace {

constexpr int fullBacklight = 128;
constexpr int linesOfWhat = 10; // so many lines of large letters would fill the panel's height
constexpr int linesOfWhy = 20;

QFont fontOf(const QPainter& painter, int pixels) {
    QFont font = painter.font();
    font.setPixelSize(std::max(pixels, 1));
    return font;
}

void paintDarkness(QPainter& painter, const QRect& area, const Darkness& darkness) {
    painter.fillRect(area, Qt::black);
    const int margin = area.height() / linesOfWhat;
    const QRect inner = area.adjusted(margin, margin, -margin, -margin);
    QRect what = inner;
    what.setBottom(area.center().y());
    QRect why = inner;
    why.setTop(area.center().y() + margin / 2);
    painter.setPen(QColor(0xFFE0E0E0));
    painter.setFont(fontOf(painter, area.height() / linesOfWhat));
    painter.drawText(what, Qt::AlignHCenter | Qt::AlignBottom | Qt::TextWordWrap, darkness.what);
    painter.setPen(QColor(0xFFA0A0A0));
    painter.setFont(fontOf(painter, area.height() / linesOfWhy));
    painter.drawText(why, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, darkness.why);
}

QString whyNotScanning(const controller::PanelState& state) {
    if (!state.powered) {
        return QObject::tr("The controller is held in power-down: its PD pin is low.");
    }
    if (!state.awake) {
        return QObject::tr("The controller's clock stands still: no host command has started it, "
                           "or it has been sent to sleep.");
    }
    return QObject::tr("The controller scans nothing: REG_PCLK, REG_HCYCLE or REG_VCYCLE is 0.");
}

} // namespace

std::optional<Darkness> darkness(const controller::PanelState& state) {
    if (!state.scanning) {
        return Darkness{QObject::tr("The panel gets no picture"), whyNotScanning(state)};
    }
    if (!state.displayOn) {
        return Darkness{QObject::tr("The display is switched off"),
                        QObject::tr("The controller does not drive its DISP line high.")};
    }
    if (state.backlight <= 0) {
        return Darkness{QObject::tr("The backlight is off"), QObject::tr("REG_PWM_DUTY is 0.")};
    }
    return {};
}

void paintAppearance(QPainter& painter, const QRect& area, const QImage& picture,
                     const controller::PanelState& state) {
    if (const auto dark = darkness(state)) {
        paintDarkness(painter, area, *dark);
        return;
    }
    painter.drawImage(area, picture);
    const int lacking = fullBacklight - std::min(state.backlight, fullBacklight);
    painter.fillRect(area, QColor(0, 0, 0, lacking * 255 / fullBacklight));
}

QImage appearance(const QImage& picture, const controller::PanelState& state) {
    QImage image(panelSize, QImage::Format_RGB32);
    QPainter painter(&image);
    paintAppearance(painter, image.rect(), picture, state);
    return image;
}

} // namespace panel
