#pragma once

#include "displaymodule.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <mutex>

namespace panel {

// Writes each complaint of the controller once to standard error, and at the end how often it
// came. Thread-safe.
class Complaints : public Watcher {
public:
    // `failed` is called for the first complaint that is not allowed, with the module locked, on
    // whichever thread brought it on; `heard` for each one that is new, allowed or not.
    explicit Complaints(
        std::function<void(const QString&)> failed,
        std::function<void(const QString&)> heard = [](const QString& /*text*/) {})
        : m_failed(std::move(failed)), m_heard(std::move(heard)) {}
    ~Complaints() override; // writes the counts

    // Complaints like `pattern` (matchesPattern()) are no failure from now on.
    void allow(const QString& pattern);

    void complained(const std::string& text) override;

private:
    std::mutex m_mutex;
    std::map<std::string, int> m_counts;
    QStringList m_allowed;
    const std::function<void(const QString&)> m_failed;
    const std::function<void(const QString&)> m_heard;
    bool m_reported = false;
};

} // namespace panel
