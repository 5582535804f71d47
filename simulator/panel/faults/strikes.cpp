#include "strikes.h"

#include <cstdio>

namespace panel {

namespace {

void say(const QString& text, const QString& what) {
    std::fprintf(stderr, "panelsim: fault %s: %s\n", qUtf8Printable(text), qUtf8Printable(what));
}

} // namespace

Strikes::~Strikes() {
    for (auto& [name, fault] : m_faults) {
        close(fault);
    }
}

void Strikes::begin(const QString& name, const QString& text) {
    const std::lock_guard lock(m_mutex);
    close(m_faults[name]);
    m_faults[name] = Fault{text};
}

void Strikes::add(const QString& name, const QString& what) {
    QString first;
    {
        const std::lock_guard lock(m_mutex);
        Fault& fault = m_faults[name];
        if (fault.text.isEmpty()) {
            fault.text = name; // nobody has said more of it
        }
        if (++fault.count == 1) {
            say(fault.text, what);
            first = fault.text + QStringLiteral(": ") + what;
        }
    }
    if (m_told && !first.isEmpty()) {
        m_told(first);
    }
}

void Strikes::end(const QString& name) {
    const std::lock_guard lock(m_mutex);
    const auto fault = m_faults.find(name);
    if (fault != m_faults.end()) {
        close(fault->second);
    }
}

int Strikes::count(const QString& name) const {
    const std::lock_guard lock(m_mutex);
    const auto fault = m_faults.find(name);
    return fault == m_faults.end() ? 0 : fault->second.count;
}

void Strikes::close(Fault& fault) {
    if (!fault.over && fault.count > 1) {
        say(fault.text, QStringLiteral("has struck %1 times").arg(fault.count));
    }
    fault.over = true;
}

} // namespace panel
