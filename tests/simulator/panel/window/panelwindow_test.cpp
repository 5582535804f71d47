#include "panelwindow.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace panel {
namespace {

constexpr int generousMs = 60000;

class PanelWindowTest : public testing::Test {
protected:
    void SetUp() override {
        Settings settings;
        settings.application = application("exec sleep 1000");
        settings.startServer = false;
        settings.screenshots = m_directory.filePath(QStringLiteral("shots"));
        m_rig = std::make_unique<Rig>(settings);
        ASSERT_EQ(m_rig->start().text.toStdString(), "");
        m_window = std::make_unique<PanelWindow>(*m_rig, 1);
        m_window->show();
    }

    QString application(const QByteArray& command) const {
        QString path = m_directory.filePath(QStringLiteral("application"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + command + '\n');
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }

    // Does what the key does.
    void press(const char* key) {
        for (QAction* action : m_window->menuBar()->actions().first()->menu()->actions()) {
            if (action->shortcut() == QKeySequence(QString::fromLatin1(key))) {
                action->trigger();
                return;
            }
        }
        ADD_FAILURE() << "no key " << key;
    }

    bool shows(const QString& text) const {
        for (const QLabel* label : m_window->findChildren<QLabel*>()) {
            if (label->text().contains(text)) {
                return true;
            }
        }
        return false;
    }

    bool comesToShow(const QString& text) const {
        return QTest::qWaitFor([this, &text] { return shows(text); }, generousMs);
    }

    QTemporaryDir m_directory;
    std::unique_ptr<Rig> m_rig;
    std::unique_ptr<PanelWindow> m_window;
};

TEST_F(PanelWindowTest, KeysZoomInWholePixels) {
    const auto* view = m_window->findChild<PanelView*>();
    press("3");
    EXPECT_EQ(view->size(), QSize(1440, 816));
    press("1");
    EXPECT_EQ(view->size(), QSize(480, 272));
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_window->height() < 2 * 272; }, generousMs));
}

TEST_F(PanelWindowTest, ListsItsKeys) {
    for (const KeyBinding& binding : keyBindings) {
        const QString text =
            QString::fromLatin1(binding.text).replace(' ', QStringLiteral("&nbsp;"));
        EXPECT_TRUE(shows(text)) << binding.text;
    }
}

TEST_F(PanelWindowTest, AKeyTakesAScreenshotOfThePanelsOwnSize) {
    press("3");
    press("P");
    const QImage picture(m_directory.filePath(QStringLiteral("shots/screenshot-1.png")));
    EXPECT_EQ(picture.size(), QSize(480, 272));
}

TEST_F(PanelWindowTest, KeysKillAndRestartTheApplication) {
    EXPECT_TRUE(comesToShow(QStringLiteral("Application: running")));
    const qint64 first = m_rig->application().processId();
    press("R");
    EXPECT_TRUE(m_rig->application().isRunning());
    EXPECT_NE(m_rig->application().processId(), first);
    press("K");
    EXPECT_FALSE(m_rig->application().isRunning());
    EXPECT_TRUE(comesToShow(QStringLiteral("Application: not running")));
}

TEST_F(PanelWindowTest, ShowsHowTheApplicationEnded) {
    application("exit 3");
    press("R");
    EXPECT_TRUE(comesToShow(QStringLiteral("Application: ended with exit status 3")));
}

TEST_F(PanelWindowTest, AKeySwitchesTheServer) {
    EXPECT_TRUE(comesToShow(QStringLiteral("Server: off")));
    press("S");
    EXPECT_TRUE(comesToShow(QStringLiteral("Server: listening")));
    press("S");
    EXPECT_TRUE(comesToShow(QStringLiteral("Server: off")));
}

TEST_F(PanelWindowTest, ShowsTheFrameRate) {
    EXPECT_TRUE(comesToShow(QStringLiteral("0.0 frames a second")));
}

TEST_F(PanelWindowTest, AKeyQuits) {
    const QSignalSpy closed(m_window.get(), &PanelWindow::closed);
    press("Q");
    EXPECT_EQ(closed.size(), 1);
}

} // namespace
} // namespace panel
