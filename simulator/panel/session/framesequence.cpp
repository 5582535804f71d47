#include "framesequence.h"

#include "pictures.h"

namespace panel {

void FrameSequence::start(std::vector<script::FrameStepPtr> steps,
                          const controller::Controller& controller) {
    m_steps = std::move(steps);
    m_current = 0;
    enterStep(controller);
    play(controller);
}

void FrameSequence::enterStep(const controller::Controller& controller) {
    m_framesSinceEntry = 0;
    m_swapsAtEntry = controller.listsSwapped();
    m_readsAtEntry = controller.touchTagReads();
}

script::FrameView FrameSequence::view(const controller::Controller& controller) const {
    return {controller, m_framesSinceEntry, controller.listsSwapped() - m_swapsAtEntry,
            controller.touchTagReads() - m_readsAtEntry, m_inspector};
}

void FrameSequence::frameScanned(const controller::Controller& controller) {
    ++m_framesSinceEntry;
    play(controller);
}

void FrameSequence::play(const controller::Controller& controller) {
    while (m_current < m_steps.size()) {
        Event event{m_current, m_steps[m_current]->look(view(controller))};
        if (!event.outcome.ended) {
            return;
        }
        if (!event.outcome.failure.isEmpty()) {
            event.failedPicture = toImage(controller.frame().picture);
        }
        m_report(event);
        if (!event.outcome.failure.isEmpty()) {
            stop();
            return;
        }
        ++m_current;
        enterStep(controller);
    }
}

} // namespace panel
