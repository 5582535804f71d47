#pragma once

#include <QString>
#include <QStringList>

namespace panel {

// How little `text` is like `pattern`: the fewest characters to insert, leave out or replace until
// matchesPattern() is true; another case counts half. In halves.
int distanceTo(const QString& pattern, const QString& text);

// The texts, each once, in quotation marks and with how often it came, those most like the pattern
// first and otherwise in order: `"STOP", "DATA?" (7 times)`. Of very many, only the first are
// listed. "nothing" when there are none.
QString listNearestFirst(const QString& pattern, const QStringList& texts);

} // namespace panel
