#include "openfailure.h"

#include <QDebug>
#include <QFile>

#include <cerrno>

void explainOpenFailure(const QFile& file, const char* mend) {
    // QFile calls every failure to open by one name; only its text tells them apart.
    const bool forbidden = file.errorString() == qt_error_string(EACCES);
    qCritical("%s: %s; %s", qUtf8Printable(file.fileName()), qUtf8Printable(file.errorString()),
              forbidden
                  ? "let this user read and write it, as the udev rules of the package do for "
                    "the groups spi and gpio"
                  : mend);
}
