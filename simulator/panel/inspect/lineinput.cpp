#include "lineinput.h"

#include <array>
#include <unistd.h>

namespace panel {

LineInput::LineInput(int descriptor, QObject* parent)
    : QObject(parent), m_descriptor(descriptor), m_notifier(descriptor, QSocketNotifier::Read) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &LineInput::read);
}

void LineInput::read() {
    std::array<char, 4096> bytes{};
    const ssize_t count = ::read(m_descriptor, bytes.data(), bytes.size());
    if (count <= 0) {
        m_notifier.setEnabled(false);
        if (!m_begun.isEmpty()) {
            emit line(QString::fromUtf8(m_begun));
        }
        emit ended();
        return;
    }
    m_begun.append(bytes.data(), static_cast<int>(count));
    for (int end = m_begun.indexOf('\n'); end >= 0; end = m_begun.indexOf('\n')) {
        const QString text = QString::fromUtf8(m_begun.left(end));
        m_begun.remove(0, end + 1);
        emit line(text);
    }
}

} // namespace panel
