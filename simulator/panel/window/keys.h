#pragma once

#include <QString>

namespace panel {

// The window's menus, in their order.
enum class MenuName { Instrument, Record, View, Faults };

// What the keys do in the window.
enum class KeyAction {
    Zoom1,
    Zoom2,
    Zoom3,
    Zoom4,
    Screenshot,
    Record,
    RestartApplication,
    KillApplication,
    ToggleServer,
    Quit,
};

struct KeyBinding {
    KeyAction action;
    MenuName menu; // where it stands
    const char* key;
    const char* text;
};

constexpr KeyBinding keyBindings[] = {
    {KeyAction::Zoom1, MenuName::View, "1", "real size"},
    {KeyAction::Zoom2, MenuName::View, "2", "twice as large"},
    {KeyAction::Zoom3, MenuName::View, "3", "three times as large"},
    {KeyAction::Zoom4, MenuName::View, "4", "four times as large"},
    {KeyAction::Screenshot, MenuName::Record, "P", "take a screenshot, 480 x 272"},
    {KeyAction::Record, MenuName::Record, "C", "begin or end a recording of what I do"},
    {KeyAction::RestartApplication, MenuName::Instrument, "R", "restart the application"},
    {KeyAction::KillApplication, MenuName::Instrument, "K", "kill the application"},
    {KeyAction::ToggleServer, MenuName::Instrument, "S", "switch the measurement server on or off"},
    {KeyAction::Quit, MenuName::Instrument, "Q", "quit"},
};

// One line for each key.
QString keyHelp();

} // namespace panel
