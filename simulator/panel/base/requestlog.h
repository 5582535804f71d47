#pragma once

#include "linelog.h"

namespace panel {

// The requests that reached the measurement server.
class RequestLog : private LineLog {
public:
    using LineLog::add;
    using LineLog::count;
    using LineLog::mark;
    using LineLog::notPassed;
    using LineLog::take;

    // Since the last mark; polls for data come and go with the time, so they can be left out.
    QStringList since(bool withData) const;
};

} // namespace panel
