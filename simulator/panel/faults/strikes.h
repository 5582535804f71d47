#pragma once

#include <QString>

#include <functional>
#include <map>
#include <mutex>
#include <utility>

namespace panel {

// Which faults have struck, and how often. The first strike of each is told in one line on standard
// error, and to `told`; how many there were, when it is over. Thread-safe.
class Strikes {
public:
    // `told` is called on the thread on which the fault strikes.
    explicit Strikes(std::function<void(const QString&)> told = {}) : m_told(std::move(told)) {}
    Strikes(const Strikes&) = delete;
    Strikes& operator=(const Strikes&) = delete;
    ~Strikes(); // all are over

    // The fault that was asked for as `text` begins; it has not struck yet.
    void begin(const QString& name, const QString& text);
    void add(const QString& name, const QString& what);
    void end(const QString& name);

    int count(const QString& name) const; // since it began, also after its end

private:
    struct Fault {
        QString text;
        int count = 0;
        bool over = false;
    };
    static void close(Fault& fault);

    const std::function<void(const QString&)> m_told;
    mutable std::mutex m_mutex;        // guards what follows
    std::map<QString, Fault> m_faults; // by name
};

} // namespace panel
