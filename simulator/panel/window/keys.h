#pragma once

#include <QString>

namespace panel {

// What the keys do in the window.
enum class KeyAction {
    Zoom1,
    Zoom2,
    Zoom3,
    Zoom4,
    Screenshot,
    RestartApplication,
    KillApplication,
    ToggleServer,
    Quit,
};

struct KeyBinding {
    KeyAction action;
    const char* key;
    const char* text;
};

constexpr KeyBinding keyBindings[] = {
    {KeyAction::Zoom1, "1", "real size"},
    {KeyAction::Zoom2, "2", "twice as large"},
    {KeyAction::Zoom3, "3", "three times as large"},
    {KeyAction::Zoom4, "4", "four times as large"},
    {KeyAction::Screenshot, "P", "take a screenshot, 480 x 272"},
    {KeyAction::RestartApplication, "R", "restart the application"},
    {KeyAction::KillApplication, "K", "kill the application"},
    {KeyAction::ToggleServer, "S", "switch the measurement server on or off"},
    {KeyAction::Quit, "Q", "quit"},
};

// One line for each key.
QString keyHelp();

} // namespace panel
