#pragma once

#include "pulsesource.h"

#include <QByteArray>

#include <array>
#include <cstdint>
#include <optional>

namespace server {

// What the panel can set.
struct Params {
    double timeConst = 0.5; // seconds; 0.01 to 10 by command
    // Trigger levels of channel 0 to 3 in volts, -10 to 10 by command. At first they lie between
    // the peaks of the pulse heights, so that channel k counts the pulses of more than k photons.
    std::array<double, 4> ref{0.05, 0.15, 0.25, 0.35};
};

// The values of channel 0 to 3.
using Sample = std::array<double, 4>;

// The instrument behind the server: answers one command line at a time, without any socket.
// docs/protocol.md lists the commands. Time is an argument, in seconds; it never goes back.
//
// The pulses live in a time of their own, which goes on by one time constant with each sample of a
// run. The clock's time only says when a sample is complete: one time constant after the run (or
// its present time constant) was started, or the sample before was first reported. So the same
// seed and the same requests give the same samples, however slow the machine is.
class Instrument {
public:
    explicit Instrument(std::uint32_t seed);

    // Carries out `line` (without its line feed) and returns the whole reply, line feed included;
    // empty for a command that has none. Anything that is no command with good arguments changes
    // nothing and is answered with "Error\n".
    QByteArray answer(const QByteArray& line, double now);

    // DATA? reports these values, whether a run is active or not; nothing goes back to counting.
    void setFixedSample(const std::optional<Sample>& sample) { m_fixedSample = sample; }
    // Answers STOP and DAC with "Ok\n" too.
    void setAnswerEverything(bool on) { m_answerEverything = on; }

    bool isRunning() const { return m_running; }
    const Params& params() const { return m_params; }
    // Takes any values, also ones that no command could set.
    void setParams(const Params& params) { m_params = params; }

private:
    QByteArray start(const QByteArray& seconds, double now);
    QByteArray stop();
    QByteArray setTriggerLevel(const QByteArray& arguments);
    QByteArray data(double now);
    QByteArray paramsReply() const;
    QByteArray quietOk() const;
    void completeSample(double now);

    PulseSource m_source;
    Params m_params;
    double m_pulseTime = 0;   // up to which the pulses have been counted, seconds
    double m_sampleBegan = 0; // by the clock
    Sample m_sample{};        // the last complete one
    std::optional<Sample> m_fixedSample;
    bool m_running = false;
    bool m_answerEverything = false;
};

} // namespace server
