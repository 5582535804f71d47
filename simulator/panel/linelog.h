#pragma once

#include <QString>
#include <QStringList>

namespace panel {

// Lines that somebody has sent or written, without their line feeds, in order.
class LineLog {
public:
    void add(const QString& line) { m_lines += line; }

    // The lines since here are what since() gives and what take() looks at.
    void mark();

    // Looks for a line like `pattern` (matchesPattern()) among those that no earlier take() has
    // passed, and passes it.
    bool take(const QString& pattern);

    QStringList since() const { return m_lines.mid(m_marked); } // the last mark

    int count() const { return m_lines.size(); }

private:
    QStringList m_lines;
    int m_marked = 0;
    int m_passed = 0;
};

} // namespace panel
