#pragma once

class QFile;

// Logs, beside the fixed message, which file could not be opened and why, and what mends it:
// `mend`, or what an ordinary user lacks where that is the reason.
void explainOpenFailure(const QFile& file, const char* mend);
