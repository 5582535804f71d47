#pragma once

// How the working screens, the instrument client and each other are connected. The screens only
// announce what the user asks for; where that leads is decided here.
//
// Everything runs on one thread and every connection is delivered at once, so the next screen has
// drawn its first frame before the one that is left terminates. All objects are the caller's and
// must live as long as the event loop.

#include "datareader.h"

#include <QObject>

class CounterWidget;
class OptionWidget;
class PNRWidget;

// Where the options screen leads back to.
struct WayBack {
    bool toCounter = false; // else to the histogram screen
};

// Lets a measurement screen start and stop runs, and shows it every sample, also while it is not on
// the display.
template<class Screen>
void connectToClient(Screen& screen, DataReader& client) {
    QObject::connect(&screen, &Screen::start, &client, &DataReader::start);
    QObject::connect(&screen, &Screen::stop, &client, &DataReader::stop);
    QObject::connect(&client, &DataReader::dataUpdated, &screen, &Screen::updateData);
}

// The way between the two measurement screens. It ends a running measurement and, towards the
// histogram, empties it.
void connectMeasurementScreens(CounterWidget& counter, PNRWidget& histogram, DataReader& client,
                               WayBack& wayBack);

// The way to the options screen and back to where the user came from, which is kept in `wayBack`. A
// run goes on meanwhile.
void connectOptionsScreen(CounterWidget& counter, PNRWidget& histogram, OptionWidget& options,
                          WayBack& wayBack);
