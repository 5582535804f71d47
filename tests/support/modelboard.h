#pragma once

#include "controller.h"

#include <functional>

// A board without wires: the plain platform_ functions on a controller model in the same process,
// in simulated time. Linked in the instrument board's place, it lets the application's own layers
// draw real pictures at full speed and the same on every run.
//
// One board per process, as on the instrument. Every SPI byte takes 400 ns of simulated time
// (20 MHz), every message 10 us, every platform_sleep_ms() its milliseconds.
namespace modelboard {

// Fits a new controller, powered down; the one before is gone, and so are the actions still due.
void fit(controller::Generation generation, const controller::Options& options = {});

controller::Controller& controller();
controller::Nanoseconds now();

// Lets simulated time pass, as when the application sits in its event loop.
void pass(controller::Nanoseconds time);

// Runs `action` once `delay` has passed, from inside the board call in which that happens: a finger
// that comes down while the application polls. An action may throw, to end a call that waits for
// ever. Actions due at the same time run in the order in which they were given.
void after(controller::Nanoseconds delay, std::function<void()> action);

} // namespace modelboard
