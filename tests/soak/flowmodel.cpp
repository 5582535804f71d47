#include "flowmodel.h"

#include <cmath>

namespace soak {

FlowModel::FlowModel() {
    m_client.readParams();
}

bool FlowModel::isRunShown() const {
    return m_screen == Screen::Counter ? m_counterStarted : m_histogramStarted;
}

std::vector<int> FlowModel::tagsShownHeld() const {
    const bool pollsDraw = m_screen == Screen::Counter || m_screen == Screen::Histogram;
    return pollsDraw && !m_touched.empty() ? m_touched : std::vector<int>{m_drawnHeld};
}

void FlowModel::fallOutOfStep() {
    m_client.fallOutOfStep();
    m_values.reset();
    m_bins.reset();
    m_shownTimeConst.reset();
    m_shownLevels.reset();
}

Verdict FlowModel::tagRead(int read) {
    const Verdict verdict = m_client.wentOn();
    redrawOptions();
    const int touched = read == 255 ? tag::none : read;
    if (m_screen == Screen::Keypad) {
        if (const Verdict keypad = keypadTagRead(touched)) {
            return keypad;
        }
        return verdict;
    }
    if (touched != tag::none) {
        if (m_held == tag::none) {
            m_drawnHeld = touched;
            m_optionsRedraw = true;
        }
        m_held = touched;
        if (m_touched.empty() || m_touched.back() != touched) {
            m_touched.push_back(touched);
        }
    } else if (m_held != tag::none) {
        const int last = m_held;
        m_held = m_drawnHeld = tag::none;
        m_touched.clear();
        released(last);
        m_optionsRedraw = true;
    }
    return verdict;
}

Verdict FlowModel::keypadTagRead(int touched) {
    const bool first = !m_keypadDrawn;
    m_keypadDrawn = true;
    if (touched != tag::none) {
        if (m_held == tag::none || first) {
            m_drawnHeld = touched;
        }
        m_held = touched;
    } else if (m_held != tag::none) {
        const int key = m_held;
        m_held = m_drawnHeld = tag::none;
        keyReleased(key);
    }
    return std::nullopt;
}

void FlowModel::keyReleased(int key) {
    if (key == tag::back) {
        keypadLeft(std::nullopt);
    } else if (key == tag::ok) {
        keypadLeft(m_keypad.number());
    } else {
        m_keypad.type(static_cast<char>(key));
    }
}

void FlowModel::keypadLeft(std::optional<double> number) {
    m_screen = Screen::Options;
    m_optionsRedraw = true;
    if (!number) {
        return;
    }
    if (m_keypadRow == tag::timeConst) {
        m_client.setTimeConst(*number);
    } else {
        m_client.setTriggerLevel(m_keypadRow - tag::firstTrigger, *number / 1000.0);
    }
}

void FlowModel::released(int tag) {
    if (m_screen == Screen::Options) {
        releasedOnOptions(tag);
    } else {
        releasedOnMeasurement(tag);
    }
}

void FlowModel::releasedOnMeasurement(int tag) {
    const bool counter = m_screen == Screen::Counter;
    bool& started = counter ? m_counterStarted : m_histogramStarted;
    if (tag == tag::run) {
        started = !started;
        if (started && !counter) {
            m_bins = FourValues{};
        }
        started ? m_client.start() : m_client.stop();
    } else if (tag == tag::otherScreen) {
        started = false;
        m_returnToCounter = !counter;
        m_client.stop();
        if (counter) {
            m_bins = FourValues{};
        }
        show(counter ? Screen::Histogram : Screen::Counter);
    } else if (tag == tag::options) {
        m_returnToCounter = counter;
        show(Screen::Options);
    } else if (tag == tag::mode && !counter) {
        m_accumulate = !m_accumulate;
    }
}

void FlowModel::releasedOnOptions(int tag) {
    if (tag == tag::back) {
        show(m_returnToCounter ? Screen::Counter : Screen::Histogram);
        return;
    }
    m_keypadRow = tag;
    m_keypadTitle = tag == tag::timeConst
                        ? std::string("Time constant, sec")
                        : "Trigger level [" + std::to_string(tag - tag::firstTrigger) + "], mV";
    m_keypad = {};
    m_keypadDrawn = false;
    show(Screen::Keypad);
}

void FlowModel::show(Screen screen) {
    m_screen = screen;
    m_optionsRedraw = true;
}

// The screen reads the client's parameters when it is drawn, which is after the requests that the
// touch caused, and not when a poll changes them.
void FlowModel::redrawOptions() {
    if (!m_optionsRedraw || m_screen != Screen::Options || m_client.isBusy()) {
        return;
    }
    m_optionsRedraw = false;
    m_shownTimeConst = m_client.timeConst();
    m_shownLevels = m_client.levels();
}

Verdict FlowModel::request(const std::string& line, const Reply& reply, Milliseconds now) {
    redrawOptions();
    const bool wasInStep = m_client.inStep();
    Verdict verdict = m_client.request(line, reply, now);
    if (wasInStep && !m_client.inStep()) {
        fallOutOfStep();
    }
    if (!verdict && line == "DATA?") {
        takeSample(m_client.inStep() ? reply.object : std::nullopt);
    }
    return verdict;
}

void FlowModel::takeSample(const std::optional<Reply::Object>& sample) {
    if (!m_client.inStep()) {
        m_values.reset();
        m_bins.reset();
        return;
    }
    if (!sample) {
        return;
    }
    const FourValues& c = sample->channels;
    m_values = c;
    const FourValues bins{c[0] - c[1], c[1] - c[2], c[2] - c[3], c[3]};
    if (!m_accumulate) {
        m_bins = bins;
    } else if (m_bins) {
        for (std::size_t k = 0; k < bins.size(); ++k) {
            (*m_bins)[k] += bins[k];
        }
    }
}

} // namespace soak
