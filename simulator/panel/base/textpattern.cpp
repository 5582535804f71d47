#include "textpattern.h"

#include <QRegularExpression>
#include <QStringList>

namespace panel {

bool matchesPattern(const QString& pattern, const QString& text) {
    QStringList pieces = pattern.split('*');
    for (QString& piece : pieces) {
        piece = QRegularExpression::escape(piece);
    }
    const QRegularExpression expression(
        QRegularExpression::anchoredPattern(pieces.join(QStringLiteral(".*"))),
        QRegularExpression::DotMatchesEverythingOption);
    return expression.match(text).hasMatch();
}

} // namespace panel
