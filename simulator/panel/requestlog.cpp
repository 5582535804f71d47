#include "requestlog.h"

#include "textpattern.h"

namespace panel {

void RequestLog::mark() {
    m_marked = m_requests.size();
    m_passed = m_marked;
}

bool RequestLog::take(const QString& pattern) {
    for (int i = m_passed; i < m_requests.size(); ++i) {
        if (matchesPattern(pattern, m_requests[i])) {
            m_passed = i + 1;
            return true;
        }
    }
    return false;
}

QStringList RequestLog::since(bool withData) const {
    QStringList requests = m_requests.mid(m_marked);
    if (!withData) {
        requests.removeAll(QStringLiteral("DATA?"));
    }
    return requests;
}

} // namespace panel
