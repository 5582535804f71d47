#pragma once

#include "controller.h"

// A board without wires: the plain platform_ functions on a controller model in the same process,
// in simulated time. Linked in the instrument board's place, it lets the application's own layers
// draw real pictures at full speed and the same on every run.
//
// One board per process, as on the instrument. Every SPI byte takes 400 ns of simulated time
// (20 MHz), every message 10 us, every platform_sleep_ms() its milliseconds.
namespace modelboard {

// Fits a new controller, powered down; the one before is gone.
void fit(controller::Generation generation);

controller::Controller& controller();
controller::Nanoseconds now();

// Lets simulated time pass, as when the application sits in its event loop.
void pass(controller::Nanoseconds time);

} // namespace modelboard
