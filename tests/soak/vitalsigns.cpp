#include "vitalsigns.h"

#include <QDir>
#include <QFile>

namespace soak {

VitalSigns vitalSignsOf(qint64 processId) {
    const QString directory = QStringLiteral("/proc/%1").arg(processId);
    VitalSigns signs;
    QFile status(directory + QStringLiteral("/status"));
    if (processId == 0 || !status.open(QIODevice::ReadOnly)) {
        return signs;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        const int value = line.mid(line.indexOf(':') + 1).trimmed().split(' ').first().toInt();
        if (line.startsWith("VmRSS:")) {
            signs.residentKilobytes = value;
        } else if (line.startsWith("Threads:")) {
            signs.threads = value;
        }
    }
    const QDir::Filters all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
    signs.descriptors = QDir(directory + QStringLiteral("/fd")).entryList(all).size();
    return signs;
}

} // namespace soak
