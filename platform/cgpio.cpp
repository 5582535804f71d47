#include "cgpio.h"

#include "openfailure.h"

#include <QDebug>
#include <QString>

#include <cstdlib>

namespace {

const char* const exportPath = "/sys/class/gpio/export";

// ExistingOnly: sysfs files are there or they are not; an ordinary file in their place is no help.
// Unbuffered: each access is one system call, at once. The messages are fixed texts, "%1" included.
void openOrExit(QFile& file, QIODevice::OpenMode mode, const char* message) {
    if (!file.open(mode | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
        qCritical("%s", message);
        explainOpenFailure(file, "the kernel must have GPIO lines in sysfs (GPIO_SYSFS), and this "
                                 "line must be there and not in use");
        std::exit(EXIT_FAILURE);
    }
}

void openDirection(QFile& file, QIODevice::OpenMode mode) {
    openOrExit(file, mode, "Can't open /sys/class/gpio/gpio%1/direction");
}

} // namespace

cGPIO::cGPIO(unsigned int base, unsigned int pin) : m_base(base), m_pin(pin) {
    QFile exportFile(QString::fromLatin1(exportPath));
    openOrExit(exportFile, QIODevice::WriteOnly, "Can't open /sys/class/gpio/export file");
    // Refused for a line that is exported already, which is as good.
    exportFile.write(QString::number(m_base + m_pin).toLocal8Bit());
    exportFile.close();

    m_valueFile.setFileName(linePath(QStringLiteral("value")));
    openOrExit(m_valueFile, QIODevice::ReadWrite, "Can't open /sys/class/gpio/gpio%1/value");
}

cGPIO::~cGPIO() {
    m_valueFile.close();
}

void cGPIO::write(bool high) {
    m_valueFile.write(high ? "1" : "0");
    m_valueFile.flush();
}

bool cGPIO::read() {
    return m_valueFile.readAll().contains('1');
}

cGPIO::GpioDirections cGPIO::directions() const {
    QFile file(linePath(QStringLiteral("direction")));
    openDirection(file, QIODevice::ReadOnly);
    const QByteArray text = file.readAll();
    file.close();
    return text.contains("in") ? In : Out;
}

void cGPIO::setDirections(const GpioDirections& direction) {
    QFile file(linePath(QStringLiteral("direction")));
    openDirection(file, QIODevice::WriteOnly);
    file.write(direction == In ? "in" : "out");
    file.close();
}

QString cGPIO::linePath(const QString& file) const {
    return QStringLiteral("/sys/class/gpio/gpio%1/%2").arg(m_base + m_pin).arg(file);
}
