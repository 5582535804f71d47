#include "linelog.h"

#include "textpattern.h"

namespace panel {

void LineLog::mark() {
    m_forgotten += m_lines.size();
    m_lines.clear();
    m_passed = 0;
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
