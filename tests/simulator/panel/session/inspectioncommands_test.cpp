#include "dlwords.h"
#include "inspectioncommands.h"
#include "inspector.h"
#include "stillhost.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <stdexcept>

namespace panel {
namespace {

namespace cmd = controllertest::cmd;
namespace dl = controller::dl;
using controllertest::pair;
using controllertest::words;
using controllertest::operator+;
using Words = std::vector<std::uint32_t>;

// Remembers a failure; nothing else is to be asked of it.
class FailureStage : public script::Stage {
public:
    Rig& rig() override { throw std::logic_error("there is no rig"); }
    HeldTouch& finger() override { throw std::logic_error("there is no finger"); }
    bool isFirstCall() const override { return true; }
    std::chrono::milliseconds elapsed() const override { return {}; }
    void fail(const QString& /*why*/, ExitStatus how) override { status = how; }
    void keepPicture(const QString& /*name*/, const QImage& /*image*/,
                     const std::vector<PanelText>& /*texts*/) override {}
    void endScript() override {}
    void playFrames() override {}

    ExitStatus status = ExitStatus::Success;
};

class InspectionCommandsTest : public testing::Test {
protected:
    InspectionCommandsTest() {
        m_host.command(Words{cmd::dlStart, dl::clearColorRgb(0x102030), dl::clear(true, true, true),
                             cmd::fgColor, 0x00FF00, cmd::button, pair(100, 100), pair(60, 30),
                             pair(27, 0x100)} +
                       words("Ok") + Words{dl::display(), cmd::swap});
        m_host.frames();
    }

    script::FrameOutcome look(const script::FrameStep& step) {
        return m_host.module.locked([&](const controller::Controller& controller) {
            return step.look({controller, 0, 0, 0, &m_inspector});
        });
    }

    // What the step says against the frame at hand; empty: nothing.
    std::string failureOf(const script::FrameStep& step) {
        const script::FrameOutcome outcome = look(step);
        EXPECT_TRUE(outcome.ended);
        return outcome.failure.toStdString();
    }

    QByteArray contentOf(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    StillHost m_host;
    Inspector m_inspector{m_host.module};
    QTemporaryDir m_directory;
};

TEST_F(InspectionCommandsTest, APixelHasTheExpectedColourOrItIsToldWhy) {
    EXPECT_EQ(failureOf(script::ExpectPixel(105, 105, 0x00FF00)), "");
    EXPECT_EQ(failureOf(script::ExpectPixel(1, 1, 0x102030)), "");
    EXPECT_EQ(failureOf(script::ExpectPixel(105, 105, 0xFF0000)),
              "it is 0x00FF00; it was drawn by BEGIN RECTS, by CMD_BUTTON 100 100 60 30 27 "
              "OPT_FLAT \"Ok\"");
}

TEST_F(InspectionCommandsTest, WhatIsUppermostComesFromTheExpectedCommand) {
    EXPECT_EQ(failureOf(script::ExpectDrawnBy(105, 105, QStringLiteral("CMD_BUTTON"))), "");
    EXPECT_EQ(failureOf(script::ExpectDrawnBy(105, 105, QStringLiteral("*\"Ok\""))), "");
    EXPECT_EQ(failureOf(script::ExpectDrawnBy(1, 1, QStringLiteral("CLEAR 1 1 1"))), "");
    EXPECT_EQ(failureOf(script::ExpectDrawnBy(1, 1, QStringLiteral("CMD_BUTTON"))),
              "it was drawn by CLEAR 1 1 1, by CLEAR 1 1 1");
}

TEST_F(InspectionCommandsTest, DumpsAreText) {
    FailureStage stage;
    const QString list = m_directory.filePath(QStringLiteral("list.txt"));
    look(script::DumpList(list)).then(stage);
    EXPECT_TRUE(contentOf(list).contains("\nby CMD_BUTTON 100 100 60 30 27 OPT_FLAT \"Ok\"\n"));
    const QString registers = m_directory.filePath(QStringLiteral("registers.txt"));
    look(script::DumpRegisters(registers)).then(stage);
    EXPECT_TRUE(contentOf(registers).contains("REG_HSIZE              0x000001E0 480\n"));
    EXPECT_EQ(stage.status, ExitStatus::Success);
}

TEST_F(InspectionCommandsTest, ADumpThatCannotBeWrittenWhollyIsAFailure) {
    FailureStage stage;
    look(script::DumpList(QStringLiteral("/dev/full"))).then(stage);
    EXPECT_EQ(stage.status, ExitStatus::FileNotWritten);
}

} // namespace
} // namespace panel
