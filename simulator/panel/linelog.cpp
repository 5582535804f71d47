#include "linelog.h"

#include "textpattern.h"

namespace panel {

void LineLog::mark() {
    m_marked = m_lines.size();
    m_passed = m_marked;
}

bool LineLog::take(const QString& pattern) {
    for (int i = m_passed; i < m_lines.size(); ++i) {
        if (matchesPattern(pattern, m_lines[i])) {
            m_passed = i + 1;
            return true;
        }
    }
    return false;
}

} // namespace panel
