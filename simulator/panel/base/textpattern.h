#pragma once

#include <QString>

namespace panel {

// Whether `text` is `pattern`, where every '*' in the pattern stands for any run of characters,
// the empty one included. Nothing else is special: patterns hold the '?' of "DATA?" as it is.
bool matchesPattern(const QString& pattern, const QString& text);

} // namespace panel
