#pragma once

#include "screentest.h"

#include <QSignalSpy>

// Tests of a screen with the button row.
template<class Screen>
class MeasurementScreenTest : public TouchedScreenTest {
protected:
    FTWidget& touchedScreen() override { return screen; }

    Screen screen{&host};
    QSignalSpy start{&screen, &Screen::start};
    QSignalSpy stop{&screen, &Screen::stop};
    QSignalSpy gotoOptions{&screen, &Screen::gotoOptions};
};
