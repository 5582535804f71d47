#pragma once

#include "../client/datareaderdata.h"
#include "ftwidget.h"

#include <array>

// "COUNTER MODE": the latest value of each of the four channels, and buttons to start and stop a
// run and to go to the histogram and options screens.
class CounterWidget : public FTWidget {
    Q_OBJECT

public:
    explicit CounterWidget(Gpu_Hal_Context_t* host);

    void setup() override;
    void updateGUI() override;
    void buttonReleased(int tag) override;

    // Whether the run button shows a run as active; survives leaving the screen.
    bool isStarted() const { return m_started; }
    void setStarted(bool started) { m_started = started; }

signals:
    // The user asks for the start or the end of a run.
    void start();
    void stop();
    // The user leaves; the screen terminates itself after the signal.
    void gotoHistogram();
    void gotoOptions();

public slots:
    // Shows a new sample from the next pass on.
    void updateData(DataReaderData data);

private:
    bool m_started = false;
    std::array<double, 4> m_values{}; // by channel
};
