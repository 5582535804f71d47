#pragma once

#include "../eve_layer/Gpu_Hal.h"

#include <QString>

// A full-screen numeric keypad.
class InputWidget {
public:
    InputWidget() = delete;

    // Shows the keypad under `title` and returns the number typed, or NaN when the user leaves with
    // the back button or what is typed is no number. Blocks, without serving the event loop, until
    // the user leaves; polls the touch every 50 ms. The display then still shows the keypad, and
    // general memory from address 110000 on is overwritten. With a null host, returns 0.0 at once.
    static double getDouble(Gpu_Hal_Context_t* host, QString title);
};
