#pragma once

#include <QtGlobal>

namespace soak {

// What a process takes, from /proc; zeros when it is not there.
struct VitalSigns {
    int residentKilobytes = 0;
    int threads = 0;
    int descriptors = 0;
};

VitalSigns vitalSignsOf(qint64 processId);

} // namespace soak
