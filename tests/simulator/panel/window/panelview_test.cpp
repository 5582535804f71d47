#include "panelview.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace panel {
namespace {

controller::PanelState litPanel(int backlight = 128) {
    return {true, true, backlight, 75};
}

QImage pictureWith(QPoint pixel, QRgb colour) {
    QImage image(480, 272, QImage::Format_RGB32);
    image.fill(0xFF204060);
    image.setPixel(pixel, colour);
    return image;
}

class PanelViewTest : public testing::Test {
protected:
    QRgb at(int x, int y) { return m_view.grab().toImage().pixel(x, y); }

    PanelView m_view;
};

TEST_F(PanelViewTest, ScalesInWholePixelsWithoutSmoothing) {
    m_view.setZoom(3);
    m_view.show(pictureWith({10, 20}, 0xFFFF8000), litPanel());
    EXPECT_EQ(m_view.size(), QSize(1440, 816));
    EXPECT_EQ(at(30, 60), 0xFFFF8000);
    EXPECT_EQ(at(32, 62), 0xFFFF8000);
    EXPECT_EQ(at(29, 60), 0xFF204060);
    EXPECT_EQ(at(33, 62), 0xFF204060);
}

TEST_F(PanelViewTest, ShowsWhatTheBacklightMakesOfIt) {
    m_view.show(pictureWith({0, 0}, 0xFFFF8000), litPanel(64));
    EXPECT_NEAR(qRed(at(0, 0)), 0x80, 2);
    EXPECT_NEAR(qGreen(at(0, 0)), 0x40, 2);
}

TEST_F(PanelViewTest, TheMouseIsTheFinger) {
    m_view.setZoom(2);
    const QSignalSpy touched(&m_view, &PanelView::touched);
    const QSignalSpy released(&m_view, &PanelView::released);

    QTest::mousePress(&m_view, Qt::LeftButton, {}, {21, 41});
    ASSERT_EQ(touched.size(), 1);
    EXPECT_EQ(touched[0][0].toPoint(), QPoint(10, 20));
    QMouseEvent drag(QEvent::MouseMove, {5000, -7}, Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(&m_view, &drag);
    ASSERT_EQ(touched.size(), 2);
    EXPECT_EQ(touched[1][0].toPoint(), QPoint(479, 0)) << "the finger stays on the panel";
    EXPECT_EQ(released.size(), 0);
    QTest::mouseRelease(&m_view, Qt::LeftButton, {}, {21, 41});
    EXPECT_EQ(released.size(), 1);
}

TEST_F(PanelViewTest, TellsWhereTheMouseIs) {
    m_view.setZoom(2);
    const QSignalSpy hovered(&m_view, &PanelView::hovered);
    const QSignalSpy touched(&m_view, &PanelView::touched);
    QMouseEvent move(QEvent::MouseMove, {21, 41}, Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(&m_view, &move);
    ASSERT_EQ(hovered.size(), 1);
    EXPECT_EQ(hovered[0][0].toPoint(), QPoint(10, 20));
    EXPECT_EQ(touched.size(), 0);
    const QSignalSpy left(&m_view, &PanelView::left);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&m_view, &leave);
    EXPECT_EQ(left.size(), 1);
}

TEST_F(PanelViewTest, OnlyTheLeftButtonTouches) {
    const QSignalSpy touched(&m_view, &PanelView::touched);
    QTest::mouseClick(&m_view, Qt::RightButton, {}, {5, 5});
    EXPECT_EQ(touched.size(), 0);
}

} // namespace
} // namespace panel
