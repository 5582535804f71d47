#include "appearance.h"

#include <QPainter>

#include <gtest/gtest.h>

namespace panel {
namespace {

constexpr QRgb orange = 0xFFFF8000;

QImage orangePicture() {
    QImage image(panelSize, QImage::Format_RGB32);
    image.fill(orange);
    return image;
}

controller::PanelState shining(int backlight = 128) {
    controller::PanelState state;
    state.scanning = true;
    state.displayOn = true;
    state.backlight = backlight;
    return state;
}

bool hasColour(const QImage& image, QRgb colour) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == colour) {
                return true;
            }
        }
    }
    return false;
}

// Text on black, and nothing of the picture.
void expectOnlyText(const controller::PanelState& state) {
    const QImage seen = appearance(orangePicture(), state);
    EXPECT_EQ(seen.size(), panelSize);
    EXPECT_EQ(seen.pixel(0, 0), 0xFF000000);
    EXPECT_FALSE(hasColour(seen, orange));
    EXPECT_TRUE(hasColour(seen, 0xFFE0E0E0));
}

TEST(Appearance, IsThePictureAtFullBacklight) {
    EXPECT_EQ(appearance(orangePicture(), shining()), orangePicture());
    EXPECT_FALSE(darkness(shining()));
}

TEST(Appearance, DimsWithTheBacklight) {
    const QRgb half = appearance(orangePicture(), shining(64)).pixel(0, 0);
    EXPECT_NEAR(qRed(half), 0x80, 2);
    EXPECT_NEAR(qGreen(half), 0x40, 2);
    EXPECT_EQ(appearance(orangePicture(), shining(1000)), orangePicture());
}

TEST(Appearance, SaysWhenTheBacklightIsOff) {
    expectOnlyText(shining(0));
    EXPECT_EQ(darkness(shining(0))->what, QStringLiteral("The backlight is off"));
}

TEST(Appearance, SaysWhenTheDisplayIsOff) {
    controller::PanelState state = shining();
    state.displayOn = false;
    expectOnlyText(state);
    EXPECT_EQ(darkness(state)->what, QStringLiteral("The display is switched off"));
}

TEST(Appearance, SaysWhyThePanelGetsNoPicture) {
    controller::PanelState state = shining();
    state.scanning = false;
    expectOnlyText(state);
    EXPECT_EQ(darkness(state)->what, QStringLiteral("The panel gets no picture"));
    EXPECT_TRUE(darkness(state)->why.contains(QStringLiteral("REG_PCLK")));
    state.awake = false;
    EXPECT_TRUE(darkness(state)->why.contains(QStringLiteral("clock stands still")));
    state.powered = false;
    EXPECT_TRUE(darkness(state)->why.contains(QStringLiteral("PD pin is low")));
}

} // namespace
} // namespace panel
