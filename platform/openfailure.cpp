#include "openfailure.h"

#include <QDebug>
#include <QFile>

void explainOpenFailure(const QFile& file, const char* mend) {
    const bool forbidden = file.error() == QFileDevice::PermissionsError;
    qCritical("%s: %s; %s", qUtf8Printable(file.fileName()), qUtf8Printable(file.errorString()),
              forbidden
                  ? "let this user read and write it, as the udev rules of the package do for "
                    "the groups spi and gpio"
                  : mend);
}
