#include "launch.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <cstdint>
#include <elf.h>
#include <optional>

namespace panel {

namespace {

const char* const preloadVariable = "LD_PRELOAD";

struct Processor {
    std::uint16_t machine;    // as in the head of a program
    const char* architecture; // as in the names of packages
    const char* emulator;
    const char* libraries; // directory
};

const std::array<Processor, 3> processors{
    {{EM_AARCH64, "arm64", "qemu-aarch64", "/usr/lib/aarch64-linux-gnu"},
     {EM_ARM, "armhf", "qemu-arm", "/usr/lib/arm-linux-gnueabihf"},
     {EM_X86_64, "amd64", "qemu-x86_64", "/usr/lib/x86_64-linux-gnu"}}};

// e_machine of an ELF file (of any word length; of low byte first); none for other files.
std::optional<std::uint16_t> machineOf(const QString& path) {
    constexpr int place = 18;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray head = file.read(place + 2);
    if (head.size() < place + 2 || !head.startsWith(ELFMAG) || head[EI_DATA] != ELFDATA2LSB) {
        return {};
    }
    const auto byte = [&head](int at) { return static_cast<std::uint8_t>(head[at]); };
    return static_cast<std::uint16_t>(byte(place) | byte(place + 1) << 8);
}

// The processor that the program is for, if that is another one than ours.
const Processor* foreignProcessor(const QString& program) {
    const auto machine = machineOf(program);
    if (!machine || machine == machineOf(QStringLiteral("/proc/self/exe"))) {
        return nullptr;
    }
    const auto* const found =
        std::find_if(processors.begin(), processors.end(),
                     [machine](const Processor& known) { return known.machine == *machine; });
    return found != processors.end() ? found : nullptr;
}

QString findEmulator(const Processor& processor) {
    const QString name = QString::fromLatin1(processor.emulator);
    const QString fixed = QStandardPaths::findExecutable(name + QStringLiteral("-static"));
    return !fixed.isEmpty() ? fixed : QStandardPaths::findExecutable(name);
}

// The library's path, or an empty string.
QString findLibrary(const QString& name, const Processor& processor, const QString& program) {
    for (const QString& directory :
         {QFileInfo(program).absolutePath(), QString::fromLatin1(processor.libraries)}) {
        QString path = directory + QLatin1Char('/') + name;
        if (machineOf(path) == processor.machine) {
            return path;
        }
    }
    return {};
}

QString missing(const QString& program, const Processor& processor, const QString& what) {
    return QStringLiteral("%1 is a program for %2, and this machine has no %3")
        .arg(program, QString::fromLatin1(processor.architecture), what);
}

Launch launchEmulated(const QString& program, const Launch::Variables& variables,
                      const Processor& processor) {
    Launch launch;
    launch.program = findEmulator(processor);
    if (launch.program.isEmpty()) {
        launch.error =
            missing(program, processor,
                    QStringLiteral("%1-static to run it (install the package qemu-user-static)")
                        .arg(QString::fromLatin1(processor.emulator)));
        return launch;
    }
    for (const auto& [name, value] : variables) {
        if (name != preloadVariable) {
            launch.variables.emplace_back(name, value);
            continue;
        }
        const QString library =
            QFileInfo(QString::fromStdString(value.substr(value.rfind(':') + 1))).fileName();
        const QString path = findLibrary(library, processor, program);
        if (path.isEmpty()) {
            launch.error =
                missing(program, processor,
                        QStringLiteral("%1 for it (packaging/fetch-preload.sh %2 DIRECTORY "
                                       "puts one into the program's directory)")
                            .arg(library, QString::fromLatin1(processor.architecture)));
        }
        // The emulator itself must not see it.
        launch.arguments << QStringLiteral("-E")
                         << QString::fromLatin1(preloadVariable) + QLatin1Char('=') + path;
    }
    launch.arguments << program;
    return launch;
}

} // namespace

Launch launchOf(const QString& program, const Launch::Variables& variables) {
    if (const Processor* const processor = foreignProcessor(program)) {
        return launchEmulated(program, variables, *processor);
    }
    return {program, {}, variables, {}};
}

} // namespace panel
