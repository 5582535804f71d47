// The memory of the shipped program on the virtual instrument, beside that of a program that only
// loads the same libraries, on the same virtual board.
//
// What counts is the resident memory. The other two figures are shown because they say where it
// goes, but depend on which other programs use Qt at the moment: pages of Qt's code that nobody
// else has touched yet count as the program's own.

#include "virtualinstrument.h"

#include <QFile>
#include <QtTest>

#include <gmock/gmock.h>

#include <iostream>

namespace {

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

Memory settledMemory(VirtualInstrument& instrument) {
    Memory memory;
    for (int same = 0, looks = 0; same < sameLooks && looks < 100; ++looks) {
        QTest::qWait(settlingMs);
        EXPECT_TRUE(instrument.rig().application().isRunning());
        const Memory now = memoryOf(instrument.rig().application().processId());
        same = now.resident == memory.resident ? same + 1 : 0;
        memory = now;
    }
    return memory;
}

TEST(Footprint, CounterScreenNeedsLittleMoreThanAnEmptyProgram) {
    Memory empty;
    {
        VirtualInstrument instrument(EMPTYQT);
        empty = settledMemory(instrument);
    }
    VirtualInstrument instrument(FRONTPANEL);
    ASSERT_TRUE(instrument.shows("COUNTER MODE"));
    const Memory idle = settledMemory(instrument);
    instrument.tap(339, 28); // starts a run
    ASSERT_TRUE(instrument.isAsked("START *"));
    for (int samples = 0; samples < 2; ++samples) {
        ASSERT_TRUE(instrument.isAsked("DATA?"));
    }
    const Memory counting = settledMemory(instrument);
    std::cout << "empty program:   " << empty << "\ncounter screen:  " << idle
              << "\nduring a run:    " << counting << '\n';

    for (const Memory& memory : {idle, counting}) {
        EXPECT_LE(memory.resident, allowed * empty.resident);
    }
}

} // namespace
