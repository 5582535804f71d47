#pragma once

#include "generator.h"
#include "panelcheck.h"

#include <QString>
#include <QStringList>

namespace soak {

// Writes down what happens as a session for panelsim.
class Recorder {
public:
    void start(std::uint32_t seed);
    void applicationStarts(); // after what was recorded before
    void record(const Action& action);

    // The session so far, with what should have come of its last line, and did not, at its end.
    QString session(const QString& failure, const Violation& violation,
                    const Texts& expected) const;

private:
    QStringList m_lines;
};

} // namespace soak
