#pragma once

#include "rig.h"

#include <QtTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

// The virtual instrument with a program of its own on it, without a window. Each wait is for a
// minute at most, and false if that was in vain.
class VirtualInstrument {
public:
    static constexpr int generousMs = 60000;

    explicit VirtualInstrument(const char* application, bool withServer = true)
        : m_rig(settingsFor(application, withServer)) {
        const panel::Rig::Failure failure = m_rig.start();
        EXPECT_FALSE(failure) << qPrintable(failure.text);
    }

    panel::Rig& rig() { return m_rig; }

    bool shows(const std::string& text) {
        return QTest::qWaitFor(
            [&] {
                const std::vector<std::string> texts = m_rig.module().locked(
                    [](const controller::Controller& chip) { return chip.textOnPanel(); });
                return std::find(texts.begin(), texts.end(), text) != texts.end();
            },
            generousMs);
    }

    void tap(int x, int y) {
        m_rig.module().touch(x, y);
        const std::uint32_t before = m_rig.module().counts().touchTagReads;
        // One may have been on its way, the next one sees the finger, and one more for good
        // measure.
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return m_rig.module().counts().touchTagReads - before >= 3; }, generousMs));
        m_rig.module().release();
    }

    // Whether a request like `pattern` reaches the server that has not been asked for before.
    bool isAsked(const char* pattern) {
        return QTest::qWaitFor([&] { return m_rig.requests().take(QString::fromLatin1(pattern)); },
                               generousMs);
    }

private:
    static panel::Settings settingsFor(const char* application, bool withServer) {
        panel::Settings settings;
        settings.application = QString::fromLocal8Bit(application);
        settings.headless = true;
        settings.startServer = withServer;
        return settings;
    }

    panel::Rig m_rig;
};
