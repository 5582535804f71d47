#include "launch.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <elf.h>

namespace panel {
namespace {

using testing::HasSubstr;

// The head of a program; that of a 32-bit ARM one is foreign to every machine that builds this.
QByteArray headOf(std::uint16_t machine, char byteOrder = ELFDATA2LSB) {
    QByteArray head(ELFMAG);
    head += ELFCLASS32;
    head += byteOrder;
    head.resize(18);
    head += static_cast<char>(machine & 0xFF);
    head += static_cast<char>(machine >> 8);
    return head;
}

class LaunchTest : public testing::Test {
protected:
    LaunchTest() { qputenv("PATH", m_emulators.path().toLocal8Bit()); }
    ~LaunchTest() override { qputenv("PATH", m_searchPath); }

    // A file of that content, and its path.
    QString add(const char* name, const QByteArray& content) const {
        return write(m_programs.filePath(QString::fromLatin1(name)), content);
    }
    QString addEmulator(const char* name) const {
        QString path = write(m_emulators.filePath(QString::fromLatin1(name)), "#!/bin/sh\n");
        QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
        return path;
    }

private:
    static QString write(QString path, const QByteArray& content) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return path;
    }

    const QByteArray m_searchPath = qgetenv("PATH");
    QTemporaryDir m_programs;
    QTemporaryDir m_emulators;
};

const Launch::Variables variables{{"LD_PRELOAD", "first.so:libboard.so.0"}, {"BOARD", "here"}};

TEST_F(LaunchTest, AProgramForThisMachineIsStartedAsItIs) {
    const Launch launch = launchOf(QStringLiteral("/proc/self/exe"), variables);
    EXPECT_EQ(launch.program, QStringLiteral("/proc/self/exe"));
    EXPECT_EQ(launch.arguments, QStringList());
    EXPECT_EQ(launch.variables, variables);
    EXPECT_EQ(launch.error, QString());
}

TEST_F(LaunchTest, WhatHasNoProgramsHeadIsLeftToTheKernel) {
    const QByteArray foreign = headOf(EM_ARM);
    for (const QByteArray& content :
         {QByteArray("#!/bin/sh\n"), QByteArray(), foreign.left(foreign.size() - 1),
          headOf(EM_ARM, ELFDATA2MSB), headOf(EM_S390)}) {
        const QString program = add("program", content);
        EXPECT_EQ(launchOf(program, variables).program, program);
    }
    EXPECT_EQ(launchOf(QStringLiteral("/no/such/program"), {}).program,
              QStringLiteral("/no/such/program"));
}

TEST_F(LaunchTest, AProgramForAnotherProcessorIsStartedInAnEmulatorWithTheLibraryBesideIt) {
    const QString emulator = addEmulator("qemu-arm");
    const QString program = add("program", headOf(EM_ARM));
    const QString library = add("libboard.so.0", headOf(EM_ARM));
    const Launch launch = launchOf(program, variables);
    EXPECT_EQ(launch.program, emulator);
    EXPECT_EQ(launch.arguments, QStringList({"-E", "LD_PRELOAD=" + library, program}));
    EXPECT_EQ(launch.variables, (Launch::Variables{{"BOARD", "here"}}));
    EXPECT_EQ(launch.error, QString());
}

TEST_F(LaunchTest, ABoardThatPreloadsNothingNeedsNoLibrary) {
    addEmulator("qemu-arm");
    const QString program = add("program", headOf(EM_ARM));
    const Launch launch = launchOf(program, {});
    EXPECT_EQ(launch.arguments, QStringList(program));
    EXPECT_EQ(launch.error, QString());
}

TEST_F(LaunchTest, TheEmulatorThatNeedsNoLibrariesIsPreferred) {
    addEmulator("qemu-arm");
    const QString fixed = addEmulator("qemu-arm-static");
    EXPECT_EQ(launchOf(add("program", headOf(EM_ARM)), {}).program, fixed);
}

TEST_F(LaunchTest, SaysWhichEmulatorIsMissing) {
    addEmulator("qemu-aarch64-static");
    const QString program = add("program", headOf(EM_ARM));
    const std::string error = launchOf(program, variables).error.toStdString();
    EXPECT_THAT(error, HasSubstr(program.toStdString() + " is a program for armhf"));
    EXPECT_THAT(error, HasSubstr("no qemu-arm-static to run it (install the package "));
}

TEST_F(LaunchTest, SaysWhichLibraryIsMissing) {
    addEmulator("qemu-arm");
    const QString program = add("program", headOf(EM_ARM));
    add("libboard.so.0", headOf(EM_AARCH64)); // of no use
    const std::string error = launchOf(program, variables).error.toStdString();
    EXPECT_THAT(error, HasSubstr("no libboard.so.0 for it (packaging/fetch-preload.sh armhf "));
}

} // namespace
} // namespace panel
