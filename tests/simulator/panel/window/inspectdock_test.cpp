#include "dlwords.h"
#include "inspectdock.h"
#include "stillhost.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace panel {
namespace {

namespace cmd = controllertest::cmd;
namespace dl = controller::dl;
using controllertest::pair;
using controllertest::words;
using controllertest::operator+;
using Words = std::vector<std::uint32_t>;

enum Tab { Pixel, List, Registers, Memory };

class InspectDockTest : public testing::Test {
protected:
    InspectDockTest() {
        m_host.command(Words{cmd::dlStart, dl::clear(true, true, true), dl::begin(9),
                             dl::vertex2ii(10, 10, 0, 0), dl::vertex2ii(50, 50, 0, 0), dl::end(),
                             cmd::text, pair(100, 100), pair(28, 0x600)} +
                       words("Ok") + Words{dl::display(), cmd::swap});
        m_host.frames();
        m_dock.show();
    }

    QTreeWidget& open(Tab tab) {
        auto& tabs = *m_dock.findChild<QTabWidget*>();
        tabs.setCurrentIndex(tab);
        return *tabs.currentWidget()->findChild<QTreeWidget*>();
    }
    QLineEdit& search() {
        return *m_dock.findChild<QTabWidget*>()->currentWidget()->findChild<QLineEdit*>();
    }
    QPushButton* button(const char* text) {
        for (QPushButton* button : m_dock.findChildren<QPushButton*>()) {
            if (button->text() == QLatin1String(text)) {
                return button;
            }
        }
        return nullptr;
    }

    static std::string textOf(const QTreeWidgetItem* item) {
        return item != nullptr ? item->text(0).toStdString() : "none";
    }

    StillHost m_host;
    Inspector m_inspector{m_host.module};
    InspectDock m_dock{m_inspector};
};

TEST_F(InspectDockTest, ShowsWhatHasDrawnThePixelUnderTheMouseAndOutlinesIt) {
    QSignalSpy outlined(&m_dock, &InspectDock::outlined);
    m_dock.hover({30, 20});
    QTreeWidget& steps = open(Pixel);
    ASSERT_EQ(steps.topLevelItemCount(), 2);
    EXPECT_EQ(textOf(steps.topLevelItem(0)), "BEGIN RECTS: 3 VERTEX2II 50 50 0 0  0xFFFFFF");
    EXPECT_EQ(textOf(steps.topLevelItem(0)->child(3)), "by VERTEX2II 50 50 0 0");
    EXPECT_EQ(textOf(steps.topLevelItem(1)), "   0  CLEAR 1 1 1  0x000000");
    ASSERT_FALSE(outlined.isEmpty());
    EXPECT_TRUE(outlined.last().first().toRect().contains(QRect(10, 10, 41, 41)));
    EXPECT_LT(outlined.last().first().toRect().width(), 45);
}

TEST_F(InspectDockTest, AHeldPixelStays) {
    m_dock.hover({30, 20});
    m_dock.perform(KeyAction::HoldPixel);
    m_dock.hover({200, 200});
    EXPECT_EQ(open(Pixel).topLevelItemCount(), 2);
    m_dock.perform(KeyAction::HoldPixel);
    m_dock.hover({200, 200});
    EXPECT_EQ(open(Pixel).topLevelItemCount(), 1);
}

TEST_F(InspectDockTest, FoldsTheListByCommandAndSearchesIt) {
    QTreeWidget& list = open(List);
    const QList<QTreeWidgetItem*> texts =
        list.findItems(QStringLiteral("CMD_TEXT 100 100 28 OPT_CENTER"), Qt::MatchStartsWith);
    ASSERT_EQ(texts.size(), 1);
    EXPECT_GT(texts.first()->childCount(), 5);
    EXPECT_FALSE(texts.first()->isExpanded());
    search().setText(QStringLiteral("bitmaps"));
    EXPECT_TRUE(texts.first()->isExpanded());
    EXPECT_TRUE(list.topLevelItem(0)->isHidden());
    search().clear();
    EXPECT_FALSE(list.topLevelItem(0)->isHidden());
}

TEST_F(InspectDockTest, ShowsRegistersAsTheyChange) {
    QTreeWidget& registers = open(Registers);
    const auto items = registers.findItems(QStringLiteral("REG_MACRO_0"), Qt::MatchExactly);
    ASSERT_EQ(items.size(), 1);
    m_host.write(0x3020D8, {0x1234});
    m_dock.refresh();
    EXPECT_EQ(items.first()->text(1).toStdString(), "0x00001234");
    search().setText(QStringLiteral("hsize"));
    EXPECT_TRUE(items.first()->isHidden());
}

TEST_F(InspectDockTest, StopsAndStepsThePanelsTime) {
    m_dock.perform(KeyAction::Pause); // the host has paused it already
    EXPECT_FALSE(m_host.module.isPaused());
    button("Pause")->click();
    EXPECT_TRUE(m_host.module.isPaused());
    EXPECT_NE(button("Go"), nullptr);
    const std::uint32_t frames = m_host.module.counts().frames;
    button("Frame")->click();
    EXPECT_EQ(m_host.module.counts().frames, frames + 1);
    m_dock.perform(KeyAction::Slower);
    EXPECT_EQ(m_host.module.speed(), 0.5);
    m_dock.perform(KeyAction::Faster);
    EXPECT_EQ(m_host.module.speed(), 1);
}

TEST_F(InspectDockTest, OutlinesNothingWhenItIsHidden) {
    m_dock.hover({30, 20});
    QSignalSpy outlined(&m_dock, &InspectDock::outlined);
    m_dock.perform(KeyAction::Inspect);
    ASSERT_EQ(outlined.count(), 1);
    EXPECT_TRUE(outlined.last().first().toRect().isEmpty());
}

} // namespace
} // namespace panel
