#pragma once

// How long a test waits for what must come: only a broken program exceeds it, however busy the
// machine is.
constexpr int generousMs = 60000;
