#pragma once

#include "action.h"
#include "displaymodule.h"

#include <functional>
#include <vector>

namespace panel {

// Plays the lines of a script that look at frames, each from the frame on at which the one before
// was content. It is called for every frame the panel scans, so it misses none.
class FrameSequence : public Watcher {
public:
    struct Event {
        std::size_t step = 0;         // which one has ended
        script::FrameOutcome outcome; // after a failure the sequence has ended, too
        QImage failedPicture = {};    // of the frame that has failed
    };
    // Called with the module locked, on whichever thread brought it on.
    using Report = std::function<void(const Event&)>;

    explicit FrameSequence(Report report, const Inspector* inspector = nullptr)
        : m_report(std::move(report)), m_inspector(inspector) {}

    // Starts with the frame now shown. Call start() and stop() with the module locked.
    void start(std::vector<script::FrameStepPtr> steps, const controller::Controller& controller);
    void stop() { m_steps.clear(); }

    void frameScanned(const controller::Controller& controller) override;

private:
    void play(const controller::Controller& controller);
    void enterStep(const controller::Controller& controller);
    script::FrameView view(const controller::Controller& controller) const;

    const Report m_report;
    const Inspector* const m_inspector; // not owned
    std::vector<script::FrameStepPtr> m_steps;
    std::size_t m_current = 0;
    std::uint32_t m_framesSinceEntry = 0;
    std::uint32_t m_swapsAtEntry = 0;
    std::uint32_t m_readsAtEntry = 0;
};

} // namespace panel
