#pragma once

#include <QMetaType>

// One sample: the latest value of channel 0 to 3, as the measurement server reports it.
struct DataReaderData {
    double channel[4];
};

Q_DECLARE_METATYPE(DataReaderData)
