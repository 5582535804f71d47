#include "trace.h"

namespace panel {

bool Trace::open(const QString& path) {
    m_file.setFileName(path);
    return m_file.open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::Truncate);
}

void Trace::write(const QByteArray& text) {
    m_failed = m_failed || m_file.write(text) != text.size();
}

bool Trace::finish() {
    if (!m_failed && !m_file.flush()) {
        m_failed = true;
    }
    return !m_failed;
}

} // namespace panel
