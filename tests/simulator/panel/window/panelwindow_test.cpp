#include "messagebar.h"
#include "panelwindow.h"
#include "patience.h"

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
#include <QToolButton>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace panel {
namespace {

constexpr QSize largeScreen(3840, 2160);

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
        m_window->fitInto(largeScreen);
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
        QAction* action = actionOf(key);
        ASSERT_NE(action, nullptr) << "no key " << key;
        action->trigger();
    }

    QAction* actionOf(const char* key) const {
        for (const QMenu* menu : m_window->menuBar()->findChildren<QMenu*>()) {
            for (QAction* action : menu->actions()) {
                if (action->shortcut() == QKeySequence(QString::fromLatin1(key))) {
                    return action;
                }
            }
        }
        return nullptr;
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

    // Texts that have too little room or lie over others or over the panel, or nothing.
    QString overlap() const {
        std::vector<std::pair<QString, QRect>> places;
        const auto add = [&](const QString& name, const QWidget& widget) {
            places.emplace_back(name, QRect(widget.mapTo(m_window.get(), {}), widget.size()));
        };
        add(QStringLiteral("the panel"), m_window->view());
        for (const QLabel* label : m_window->findChildren<QLabel*>()) {
            if (label->isVisible() && label->height() < label->heightForWidth(label->width())) {
                return label->text();
            }
            if (label->isVisible()) {
                add(label->text(), *label);
            }
        }
        for (auto one = places.begin(); one != places.end(); ++one) {
            for (auto other = one + 1; other != places.end(); ++other) {
                if (one->second.intersects(other->second)) {
                    return one->first + QStringLiteral(" and ") + other->first;
                }
            }
        }
        return {};
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

TEST_F(PanelWindowTest, IsNoLargerThanTheScreenHasRoomFor) {
    const auto* view = m_window->findChild<PanelView*>();
    press("4");
    EXPECT_EQ(view->zoom(), 4);
    m_window->fitInto({1366, 768});
    EXPECT_EQ(view->zoom(), 2);
    EXPECT_LE(m_window->height(), 768);
    EXPECT_FALSE(actionOf("3")->isEnabled());
    EXPECT_TRUE(actionOf("2")->isEnabled());
    m_window->fitInto({800, 480});
    EXPECT_EQ(view->zoom(), 1);
    EXPECT_LE(m_window->width(), 800);
    EXPECT_LE(m_window->height(), 480);
    m_window->fitInto({300, 200});
    EXPECT_EQ(view->zoom(), 1) << "there is nothing smaller";
    m_window->fitInto(largeScreen);
    EXPECT_EQ(view->zoom(), 4) << "as the user wanted it";
}

TEST_F(PanelWindowTest, MessagesCoverNothing) {
    MessageBar& messages = m_window->messages();
    messages.setProgress(QStringLiteral("line 3"));
    messages.showProblem(QStringLiteral("The disk is full. ").repeated(30));
    messages.showNotice(QStringLiteral("a notice"));
    EXPECT_EQ(messages.progress(), QStringLiteral("line 3"));
    EXPECT_EQ(messages.notice(), QStringLiteral("a notice"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return overlap().isEmpty(); }, generousMs))
        << overlap().toStdString();
}

TEST_F(PanelWindowTest, ShowsWhatTheControllerComplainsOf) {
    m_rig->complaints().complained("write to 5");
    EXPECT_TRUE(comesToShow(QStringLiteral("The controller complains: write to 5")));
}

TEST_F(PanelWindowTest, ShowsHowFarAScriptIs) {
    m_window->followScript([] { return QStringLiteral("tour:3: tap 1 2"); });
    EXPECT_TRUE(comesToShow(QStringLiteral("tour:3: tap 1 2")));
}

TEST_F(PanelWindowTest, OfManyProblemsTheLastAreShown) {
    MessageBar& messages = m_window->messages();
    for (const char* text : {"one", "two", "three", "four", "five"}) {
        messages.showProblem(QString::fromLatin1(text));
    }
    EXPECT_EQ(messages.problem(), QStringLiteral("(2 before these)\nthree\nfour\nfive"));
}

TEST_F(PanelWindowTest, AProblemStaysUntilItIsClosed) {
    MessageBar& messages = m_window->messages();
    messages.showProblem(QStringLiteral("The disk is full"));
    EXPECT_TRUE(shows(QStringLiteral("The disk is full")));
    messages.findChild<QToolButton*>()->click();
    EXPECT_FALSE(shows(QStringLiteral("The disk is full")));
}

TEST_F(PanelWindowTest, ListsItsKeys) {
    for (const KeyBinding& binding : keyBindings) {
        const QString text =
            QString::fromLatin1(binding.text).replace(' ', QStringLiteral("&nbsp;"));
        EXPECT_EQ(shows(text), !isOfInspector(binding.action)) << binding.text;
        EXPECT_NE(actionOf(binding.key), nullptr) << binding.text;
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

TEST_F(PanelWindowTest, AKeyBeginsAndEndsARecording) {
    const QString path = m_directory.filePath(QStringLiteral("shots/recording-1.session"));
    press("C");
    EXPECT_TRUE(m_window->recorder().isRecording());
    press("P");
    press("S");
    press("S");
    press("K");
    press("C");
    EXPECT_FALSE(m_window->recorder().isRecording());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray recorded = file.readAll();
    EXPECT_TRUE(recorded.contains("The application was running already")) << recorded.constData();
    EXPECT_TRUE(recorded.endsWith("\nscreenshot screenshot-1\nserver start\nserver stop\n"
                                  "application kill\n"))
        << recorded.constData();
    press("C");
    EXPECT_TRUE(m_window->recorder().path().endsWith(QStringLiteral("recording-2.session")));
}

TEST_F(PanelWindowTest, ARecordingThatCannotBeWrittenIsAProblem) {
    EXPECT_FALSE(m_window->recorder().start(QStringLiteral("/no/such/file"), true));
    EXPECT_TRUE(m_window->recorder().error().startsWith(
        QStringLiteral("cannot write the recording /no/such/file: ")));
    ASSERT_TRUE(m_window->recorder().start(QStringLiteral("/dev/full"), true));
    press("C");
    EXPECT_TRUE(m_window->messages().problem().startsWith(
        QStringLiteral("cannot write the recording /dev/full: ")));
}

} // namespace
} // namespace panel
