#pragma once

#include <QFile>
#include <QObject>

// One general-purpose line through "/sys/class/gpio". The line's sysfs number is the number of its
// controller's first line plus its offset there. A sysfs file that cannot be opened ends the
// process: one critical message, exit status 1. Failing reads and writes go unnoticed.
class cGPIO : public QObject {
    Q_OBJECT

public:
    enum GpioDirections { Out = 0, In = 1 };

    // Exports the line, which may be exported already, and opens its value. The direction stays
    // as it is.
    cGPIO(unsigned int base, unsigned int pin);
    // Leaves the line exported.
    ~cGPIO() override;

    unsigned int base() const { return m_base; }
    unsigned int pin() const { return m_pin; }

    // Drives the line; it has the level when this returns.
    void write(bool high);

    // What the value file yields from its current position on. It is not rewound: on a file that
    // has been read or written before, that may be nothing, and false.
    bool read();

    GpioDirections directions() const;
    void setDirections(const GpioDirections& direction);

private:
    QString linePath(const QString& file) const;

    unsigned int m_base;
    unsigned int m_pin;
    QFile m_valueFile;
};
