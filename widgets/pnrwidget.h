#pragma once

#include "../client/datareaderdata.h"
#include "ftwidget.h"

#include <array>

// "PNR MODE": a histogram of the counts that fall between successive trigger levels, and buttons
// to start and stop a run, to go to the counter and options screens, and to choose between the sum
// of all samples and the latest one.
class PNRWidget : public FTWidget {
    Q_OBJECT

public:
    explicit PNRWidget(Gpu_Hal_Context_t* host);

    void setup() override;
    void updateGUI() override;
    void buttonReleased(int tag) override;

    // Whether the run button shows a run as active; survives leaving the screen.
    bool isStarted() const { return m_started; }
    void setStarted(bool started) { m_started = started; }

signals:
    // The user asks for the start (the histogram is already empty) or the end of a run.
    void start();
    void stop();
    // The user leaves; the screen terminates itself after the signal.
    void gotoCounts();
    void gotoOptions();

public slots:
    // Adds a new sample to the bins, or replaces them by it, and shows them from the next pass on.
    void updateData(DataReaderData data);
    // Empties the bins; they are shown so at the next redraw, which this does not ask for.
    void clear();

private:
    void drawBars() const;
    void drawLabels() const;
    void drawModeIcon() const;

    bool m_accumulate = true; // false: the bins are those of the latest sample
    bool m_started = false;
    std::array<double, 4> m_bins{};
};
