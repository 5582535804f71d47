#include "requestlog.h"

namespace panel {

QStringList RequestLog::since(bool withData) const {
    QStringList requests = LineLog::since();
    if (!withData) {
        requests.removeAll(QStringLiteral("DATA?"));
    }
    return requests;
}

} // namespace panel
