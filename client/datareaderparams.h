#pragma once

#include <QMetaType>

// The instrument parameters in force, as the measurement server reports them.
struct DataReaderParams {
    // Time constant in seconds: the server counts over this long, and the client asks for a new
    // sample once per time constant. 0 until the first reply.
    double timeConst;
    // Trigger levels of channel 0 to 3, in volts (the screens show millivolts).
    double ref[4];
};

Q_DECLARE_METATYPE(DataReaderParams)
