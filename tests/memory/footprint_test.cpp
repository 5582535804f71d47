// The memory of the shipped program on the virtual instrument, beside that of a program that only
// loads the same libraries, on the same virtual board.
//
// What counts is the resident memory. The other two figures are shown because they say where it
// goes, but depend on which other programs use Qt at the moment: pages of Qt's code that nobody
// else has touched yet count as the program's own.

#include "rig.h"

#include <QFile>
#include <QtTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr int generousMs = 60000;
constexpr int settlingMs = 100; // between two looks at the memory
constexpr int sameLooks = 5;    // that make it settled
constexpr double allowed = 1.3; // times the empty program

// In kB, of /proc/PID/smaps_rollup.
struct Memory {
    int resident = 0;     // what top shows as RES: shared libraries count in full
    int proportional = 0; // shared pages count as a fraction
    int own = 0;          // what goes away with the process
};

std::ostream& operator<<(std::ostream& out, const Memory& memory) {
    return out << "resident " << memory.resident << " kB, proportional " << memory.proportional
               << " kB, its own " << memory.own << " kB";
}

Memory memoryOf(qint64 process) {
    QFile file(QStringLiteral("/proc/%1/smaps_rollup").arg(process));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(file.errorString());
    Memory memory;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words[0] == "Rss:") {
            memory.resident = words[1].toInt();
        } else if (words[0] == "Pss:") {
            memory.proportional = words[1].toInt();
        } else if (words[0].startsWith("Private_")) {
            memory.own += words[1].toInt();
        }
    }
    return memory;
}

class Instrument {
public:
    explicit Instrument(const char* application) : m_rig(settingsFor(application)) {
        const panel::Rig::Failure failure = m_rig.start();
        EXPECT_FALSE(failure) << qPrintable(failure.text);
    }

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

    Memory settledMemory() {
        Memory memory;
        for (int same = 0, looks = 0; same < sameLooks && looks < 100; ++looks) {
            QTest::qWait(settlingMs);
            EXPECT_TRUE(m_rig.application().isRunning());
            const Memory now = memoryOf(m_rig.application().processId());
            same = now.resident == memory.resident ? same + 1 : 0;
            memory = now;
        }
        return memory;
    }

    // Whether a request like `pattern` reaches the server that has not been asked for before.
    bool isAsked(const char* pattern) {
        return QTest::qWaitFor([&] { return m_rig.requests().take(QString::fromLatin1(pattern)); },
                               generousMs);
    }

private:
    static panel::Settings settingsFor(const char* application) {
        panel::Settings settings;
        settings.application = QString::fromLocal8Bit(application);
        settings.headless = true;
        return settings;
    }

    panel::Rig m_rig;
};

TEST(Footprint, CounterScreenNeedsLittleMoreThanAnEmptyProgram) {
    Memory empty;
    {
        Instrument instrument(EMPTYQT);
        empty = instrument.settledMemory();
    }
    Instrument instrument(FRONTPANEL);
    ASSERT_TRUE(instrument.shows("COUNTER MODE"));
    const Memory idle = instrument.settledMemory();
    instrument.tap(339, 28); // starts a run
    ASSERT_TRUE(instrument.isAsked("START *"));
    for (int samples = 0; samples < 2; ++samples) {
        ASSERT_TRUE(instrument.isAsked("DATA?"));
    }
    const Memory counting = instrument.settledMemory();
    std::cout << "empty program:   " << empty << "\ncounter screen:  " << idle
              << "\nduring a run:    " << counting << '\n';

    for (const Memory& memory : {idle, counting}) {
        EXPECT_LE(memory.resident, allowed * empty.resident);
    }
}

} // namespace
