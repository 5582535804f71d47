#pragma once

#include <QString>
#include <QStringList>

namespace panel {

// The requests that reached the measurement server, without their line feeds, in order.
class RequestLog {
public:
    void add(const QString& request) { m_requests += request; }

    // The requests since here are what since() gives and what take() looks at.
    void mark();

    // Looks for a request like `pattern` (matchesPattern()) among those that no earlier take()
    // has passed, and passes it.
    bool take(const QString& pattern);

    // Since the last mark; polls for data come and go with the time, so they can be left out.
    QStringList since(bool withData) const;

    int count() const { return m_requests.size(); }

private:
    QStringList m_requests;
    int m_marked = 0;
    int m_passed = 0;
};

} // namespace panel
