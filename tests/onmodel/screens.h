#pragma once

#include "generation.h"

#include <ostream>
#include <string>
#include <vector>

struct Gpu_Hal_Context_t;

// A screen of the program as a whole picture on the panel.
struct Screen {
    std::string name;
    controller::Generation since; // older controllers lack what it draws with
    // Draws it and returns when it is on its way to the panel.
    void (*show)(Gpu_Hal_Context_t* host);

    friend std::ostream& operator<<(std::ostream& out, const Screen& screen) {
        return out << screen.name;
    }
};

// All of them. The keypad is left by its "Ok" after a digit has been typed.
const std::vector<Screen>& screens();
