#pragma once

#include "clientmodel.h"
#include "keypadtext.h"
#include "layout.h"

#include <optional>
#include <string>
#include <vector>

namespace soak {

// What the user sees and does, as the application should have it: a model that is told of each
// touched tag the application reads and of each request the server gets, in the order in which
// the application did so, and knows which screen is shown, what stands on it, and what will be
// asked of the server.
//
// The values are unknown while the client may have read the wrong reply; all else is always known.
class FlowModel {
public:
    FlowModel(); // just before the application's first request

    Verdict tagRead(int read);
    Verdict request(const std::string& line, const Reply& reply, Milliseconds now);
    void fallOutOfStep();
    void fallInStep(Milliseconds now) { m_client.fallInStep(now); }
    // To be called before looking at what is shown: no more events are due.
    void settle() { redrawOptions(); }

    Screen screen() const { return m_screen; }
    bool isRunShown() const; // of the counter or histogram screen: the stop square
    bool accumulates() const { return m_accumulate; }
    int heldTag() const { return m_held; }
    // Those of which one is shown held: the one of the last frame drawn for a press or release.
    // Polls draw frames too, so that on counter and histogram it may be any that the finger has
    // touched since it came down.
    std::vector<int> tagsShownHeld() const;
    const std::string& keypadTitle() const { return m_keypadTitle; }
    const std::string& keypadText() const { return m_keypad.text(); }

    const std::optional<FourValues>& values() const { return m_values; }
    const std::optional<FourValues>& bins() const { return m_bins; }
    // As the options screen shows them.
    std::optional<double> shownTimeConst() const { return m_shownTimeConst; }
    const std::optional<FourValues>& shownLevels() const { return m_shownLevels; }

    const ClientModel& client() const { return m_client; }

private:
    Verdict keypadTagRead(int touched);
    void keyReleased(int key);
    void keypadLeft(std::optional<double> number);
    void released(int tag);
    void releasedOnMeasurement(int tag);
    void releasedOnOptions(int tag);
    void show(Screen screen);
    void redrawOptions();
    void takeSample(const std::optional<Reply::Object>& sample);

    ClientModel m_client;
    Screen m_screen = Screen::Counter;
    bool m_counterStarted = false;
    bool m_histogramStarted = false;
    bool m_accumulate = true;
    bool m_returnToCounter = false;
    int m_held = tag::none;
    int m_drawnHeld = tag::none;
    std::vector<int> m_touched; // since the finger came down on this screen
    bool m_keypadDrawn = false;
    int m_keypadRow = 0; // the options screen's tag that opened the keypad
    std::string m_keypadTitle;
    KeypadText m_keypad;
    std::optional<FourValues> m_values = FourValues{};
    std::optional<FourValues> m_bins = FourValues{};
    bool m_optionsRedraw = false; // due when the requests of the last touch are through
    std::optional<double> m_shownTimeConst;
    std::optional<FourValues> m_shownLevels;
};

} // namespace soak
