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
    Inspect,
    HoldPixel,
    Pause,
    StepFrame,
    StepCommand,
    Slower,
    Faster,
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
    {KeyAction::Record, MenuName::Record, "C", "record on or off"},
    {KeyAction::RestartApplication, MenuName::Instrument, "R", "restart the application"},
    {KeyAction::KillApplication, MenuName::Instrument, "K", "kill the application"},
    {KeyAction::ToggleServer, MenuName::Instrument, "S", "switch the measurement server on or off"},
    {KeyAction::Inspect, MenuName::View, "I", "inspector"},
    {KeyAction::HoldPixel, MenuName::View, "H", "hold the pixel that is inspected"},
    {KeyAction::Pause, MenuName::Instrument, "Space", "let the panel's time stand still, or go on"},
    {KeyAction::StepFrame, MenuName::Instrument, "F", "on by one frame"},
    {KeyAction::StepCommand, MenuName::Instrument, "N", "on by the next command"},
    {KeyAction::Slower, MenuName::Instrument, "-", "slower"},
    {KeyAction::Faster, MenuName::Instrument, "+", "faster"},
    {KeyAction::Quit, MenuName::Instrument, "Q", "quit"},
};

// What has to do with the inspector stands in the menus only: there is no room for it below the
// panel of a small screen.
constexpr bool isOfInspector(KeyAction action) {
    return action >= KeyAction::Inspect && action <= KeyAction::Faster;
}

// One line for each key.
QString keyHelp();

} // namespace panel
