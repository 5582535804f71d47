#pragma once

#include <QString>
#include <QStringList>

namespace panel {

// Lines that somebody has sent or written, without their line feeds, in order.
class LineLog {
public:
    void add(const QString& line) { m_lines += line; }

    // The lines since here are what since() gives and what take() looks at; those before are
    // forgotten.
    void mark();

    // Looks for a line like `pattern` (matchesPattern()) among those that no earlier take() has
    // passed, and passes it.
    bool take(const QString& pattern);

    QStringList since() const { return m_lines; }                   // the last mark
    QStringList notPassed() const { return m_lines.mid(m_passed); } // what take() would look at

    int count() const { return m_forgotten + m_lines.size(); } // since the start

private:
    QStringList m_lines;
    int m_forgotten = 0;
    int m_passed = 0;
};

} // namespace panel
