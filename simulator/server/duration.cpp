#include "duration.h"

#include <cmath>

namespace server {

namespace {

constexpr double longestMs = 24.0 * 3600 * 1000;

} // namespace

std::optional<std::chrono::milliseconds> durationFromText(const QString& text) {
    double factor = 0;
    QString digits = text;
    if (text.endsWith(QStringLiteral("ms"))) {
        factor = 1;
        digits.chop(2);
    } else if (text.endsWith('s')) {
        factor = 1000;
        digits.chop(1);
    }
    bool ok = false;
    const double milliseconds = digits.toDouble(&ok) * factor;
    if (!ok || factor == 0 || !(milliseconds >= 0 && milliseconds <= longestMs))
        return std::nullopt;
    return std::chrono::milliseconds(std::llround(milliseconds));
}

} // namespace server
