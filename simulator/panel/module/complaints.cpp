#include "complaints.h"

#include "textpattern.h"

#include <algorithm>
#include <cstdio>

namespace panel {

Complaints::~Complaints() {
    for (const auto& [text, count] : m_counts) {
        if (count > 1) {
            std::fprintf(stderr, "panelsim: controller, %d times: %s\n", count, text.c_str());
        }
    }
}

void Complaints::allow(const QString& pattern) {
    const std::lock_guard lock(m_mutex);
    m_allowed += pattern;
}

void Complaints::complained(const std::string& text) {
    const std::lock_guard lock(m_mutex);
    const QString complaint = QString::fromStdString(text);
    if (++m_counts[text] == 1) {
        std::fprintf(stderr, "panelsim: controller: %s\n", text.c_str());
        m_heard(complaint);
    }
    const bool allowed =
        std::any_of(m_allowed.begin(), m_allowed.end(), [&complaint](const QString& pattern) {
            return matchesPattern(pattern, complaint);
        });
    if (!allowed && !m_reported) {
        m_reported = true;
        m_failed(complaint);
    }
}

} // namespace panel
