#pragma once

#include "displaymodule.h"
#include "script.h"

#include <QImage>

#include <functional>
#include <optional>

namespace panel {

// Plays the lines of a script that look at frames, each from the frame on at which the one before
// was content. It is called for every frame the panel scans, so it misses none.
class FrameSequence : public Watcher {
public:
    struct Event {
        std::size_t step = 0;          // which one has ended
        std::optional<QImage> picture; // of a Screenshot
        QString failure;               // of an ExpectText; the sequence has ended then
    };
    // Called with the module locked, on whichever thread brought it on.
    using Report = std::function<void(const Event&)>;

    explicit FrameSequence(Report report) : m_report(std::move(report)) {}

    // Starts with the frame now shown. Call start() and stop() with the module locked.
    void start(std::vector<script::FrameStep> steps, const controller::Controller& controller);
    void stop() { m_steps.clear(); }

    void frameScanned(const controller::Controller& controller) override;

private:
    void play(const controller::Controller& controller);
    void enterStep(const controller::Controller& controller);
    bool stepEnds(const script::FrameStep& step, const controller::Controller& controller,
                  Event& event);

    const Report m_report;
    std::vector<script::FrameStep> m_steps;
    std::size_t m_current = 0;
    std::uint32_t m_framesSinceEntry = 0;
    std::uint32_t m_swapsAtEntry = 0;
    std::uint32_t m_readsAtEntry = 0;
};

// Whether one of the strings on the panel, blanks at its ends left out, is `pattern`.
bool showsText(const controller::Controller& controller, const QString& pattern);

// Whether the coprocessor has done all it was given and no swap is pending.
bool isQuiet(const controller::Controller& controller);

} // namespace panel
