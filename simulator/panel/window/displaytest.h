#pragma once

namespace panel {

// Whether a window can be opened: Qt ends the process when it cannot, so a child tries. To be
// called before there is an application object and before any thread is started.
bool canOpenDisplay(int argc, char* argv[]);

} // namespace panel
