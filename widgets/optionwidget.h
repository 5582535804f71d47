#pragma once

#include "../client/datareader.h"
#include "ftwidget.h"

// "Options": the time constant and the four trigger levels as the instrument client has them, each
// with a button that opens the keypad to set it. While the keypad is up, the event loop stands
// still.
class OptionWidget : public FTWidget {
    Q_OBJECT

public:
    // `client` is not owned and must outlive the screen.
    OptionWidget(Gpu_Hal_Context_t* host, DataReader* client);

    void setup() override;
    void updateGUI() override;
    void buttonReleased(int tag) override;

signals:
    // The user leaves; the screen terminates itself after the signal.
    void backClicked();

private:
    void askTimeConst();
    void askTriggerLevel(int channel);

    DataReader* m_client;
};
