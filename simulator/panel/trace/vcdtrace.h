#pragma once

#include "trace.h"

#include <map>

namespace panel {

// Pins, the bytes on the bus and how full the ring is, as a value change dump, which viewers of
// waveforms read: text, a header that names the signals, then the times and what changed at each.
// The bytes of a transaction are spread evenly over it.
class VcdTrace : public Trace {
public:
    // `controller` is watched, and outlives this.
    explicit VcdTrace(const controller::Controller& controller) : m_controller(controller) {}

    bool finish() override;
    void note(TraceEvent event, const QString& text, controller::Nanoseconds now) override;

    void transactionEnded(const controller::Transaction& transaction) override;
    void pinChanged(controller::Pin pin, bool high, controller::Nanoseconds now) override;
    void frameScanned(std::uint32_t number, controller::Nanoseconds now) override;
    void listSwapped(controller::Nanoseconds now) override;
    void commandTaken(const controller::RingCommand& command, controller::Nanoseconds now) override;

protected:
    void touched(int x, int y, controller::Nanoseconds now) override;
    void released(controller::Nanoseconds now) override;

private:
    void begin();
    void set(controller::Nanoseconds now, char signal, std::uint32_t value, int bits);
    void setNothing(controller::Nanoseconds now, char signal);
    void put(controller::Nanoseconds now, char signal, const QByteArray& change);
    void sampleRing(controller::Nanoseconds now);
    void writeUntil(controller::Nanoseconds now);

    const controller::Controller& m_controller;
    bool m_begun = false;
    bool m_inTransaction = false;
    bool m_frame = false; // changes with each frame, and with each list
    bool m_list = false;
    std::multimap<controller::Nanoseconds, QByteArray> m_waiting; // what is not written yet
    std::map<char, QByteArray> m_values;   // of the signals, as they were put last
    controller::Nanoseconds m_written = 0; // the time written last
};

} // namespace panel
