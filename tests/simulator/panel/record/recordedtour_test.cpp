// What is done by hand in the window, recorded and played again, with the program as it ships.

#include "boundprocess.h"
#include "panelwindow.h"
#include "patience.h"
#include "script.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace panel {
namespace {

// What decides about the numbers on the panel, in the rig and in the script.
constexpr std::array<double, 4> sample{1234, 567, 89, 0};
constexpr double timeConstant = 0.1;
const char* const sameNumbers = "server params 0.1 0.05 0.15 0.25 0.35\n"
                                "server values 1234 567 89 0\n";

// The program in a window, and a user.
class User {
public:
    explicit User(const QString& directory) : m_rig(settings(directory)) {
        const Rig::Failure failure = m_rig.start();
        EXPECT_FALSE(failure) << qPrintable(failure.text);
        m_rig.server().apply([](server::MeasurementServer& server) {
            server.setParams({timeConstant, {0.05, 0.15, 0.25, 0.35}});
            server.setFixedSample(sample);
        });
        m_window = std::make_unique<PanelWindow>(m_rig, 1);
        m_window->show();
    }

    Recorder& recorder() { return m_window->recorder(); }
    QStringList requests() { return m_rig.requests().since(false); }

    void click(int x, int y) { QTest::mouseClick(&m_window->view(), Qt::LeftButton, {}, {x, y}); }

    void slide(QPoint from, QPoint to) {
        PanelView& view = m_window->view();
        QTest::mousePress(&view, Qt::LeftButton, {}, from);
        waitForReads(4);
        for (int i = 1; i <= 4; ++i) {
            QMouseEvent move(QEvent::MouseMove, from + (to - from) * i / 4, Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(&view, &move);
        }
        waitForReads(4);
        QTest::mouseRelease(&view, Qt::LeftButton, {}, to);
    }

    void key(const char* key) {
        for (QAction* action : m_window->findChildren<QAction*>()) {
            if (action->shortcut() == QKeySequence(QString::fromLatin1(key))) {
                action->trigger();
                return;
            }
        }
        ADD_FAILURE() << "no key " << key;
    }

    void waitForText(const char* text) {
        EXPECT_TRUE(QTest::qWaitFor(
            [this, text] {
                for (const PanelText& shown : m_rig.module().locked(textsOn)) {
                    if (shown.text == text) {
                        return true;
                    }
                }
                return false;
            },
            generousMs))
            << text;
    }

    void waitForRequest(const char* request) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return m_rig.requests().take(request); }, generousMs))
            << request;
    }

    void waitForReads(std::uint32_t count) {
        const std::uint32_t start = m_rig.module().counts().touchTagReads;
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return m_rig.module().counts().touchTagReads - start >= count; }, generousMs));
    }

private:
    static Settings settings(const QString& directory) {
        Settings settings;
        settings.application = QStringLiteral(FRONTPANEL);
        settings.quietApplication = true;
        settings.screenshots = directory;
        return settings;
    }

    Rig m_rig;
    std::unique_ptr<PanelWindow> m_window;
};

// Starts and stops a run, enters a time constant, and takes pictures on the way. Gives the requests
// that came of it.
QStringList tourByHand(const QString& directory, const QString& recording) {
    User user(directory);
    EXPECT_TRUE(user.recorder().start(recording, true));
    user.waitForText("COUNTER MODE");
    user.waitForReads(4);
    user.click(339, 28); // start
    user.waitForRequest("START 0.1");
    user.waitForText("1234");
    for (int i = 0; i < 5; ++i) {
        user.waitForRequest("DATA?");
    }
    user.key("P");
    user.click(339, 28); // stop
    user.waitForRequest("STOP");
    user.waitForReads(4);
    user.key("P");
    user.click(449, 28);
    user.waitForText("Options");
    user.waitForReads(4);
    user.click(430, 80);
    user.waitForText("Time constant, sec");
    user.waitForReads(4);
    user.slide({56, 142}, {148, 142}); // from the key 1 to the key 2
    user.waitForReads(4);
    user.key("P");
    user.click(379, 237); // Ok
    user.waitForText("Options");
    user.waitForReads(10);
    user.key("P");
    const QStringList requests = user.requests();
    EXPECT_TRUE(user.recorder().stop());
    return requests;
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

// Keeps the machine busy, and with it whatever else runs there: only on request.
class Load {
public:
    Load() {
        for (BoundProcess& process : m_processes) {
            process.start(QStringLiteral("/bin/sh"),
                          {QStringLiteral("-c"), QStringLiteral("while :; do :; done")});
        }
    }
    ~Load() {
        for (BoundProcess& process : m_processes) {
            process.kill();
            process.waitForFinished();
        }
    }

private:
    std::array<BoundProcess, 6> m_processes;
};

// How often under load; otherwise once, beside the other tests.
int playsUnderLoad() {
    return qEnvironmentVariableIntValue("RECORDED_TOUR_PLAYS");
}

TEST(RecordedTour, PlayedAgainItGivesTheSamePicturesAndRequests) {
    const QTemporaryDir directory;
    const QString pictures = directory.filePath("pictures");
    const QString recording = directory.filePath("tour.session");
    const QStringList requests = tourByHand(pictures, recording);
    EXPECT_EQ(QDir(pictures).entryList({"*.png"}).size(), 4);

    QByteArray script = sameNumbers + contentOf(recording) + "expect requests";
    for (const QString& request : requests) {
        script += ' ' + ScriptWriter::word(request).toUtf8();
    }
    EXPECT_EQ(script::parse(script, "tour").errors, QStringList());
    QFile file(recording);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(script + '\n');
    file.close();
    const auto load = playsUnderLoad() > 0 ? std::make_unique<Load>() : nullptr;
    for (int i = 0; i < std::max(playsUnderLoad(), 1); ++i) {
        BoundProcess panelsim;
        panelsim.setProcessChannelMode(QProcess::MergedChannels);
        panelsim.start(QStringLiteral(PANELSIM),
                       {"--headless", "--app", FRONTPANEL, "--script", recording, "--compare",
                        pictures, "--screenshots", directory.filePath("played")});
        ASSERT_TRUE(panelsim.waitForFinished(5 * generousMs));
        ASSERT_EQ(panelsim.exitCode(), 0) << panelsim.readAll().toStdString() << "\n"
                                          << script.toStdString();
    }
}

} // namespace
} // namespace panel
