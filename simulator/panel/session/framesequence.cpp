#include "framesequence.h"

#include "pictures.h"
#include "registers.h"
#include "textpattern.h"

#include <algorithm>

namespace panel {

namespace {

std::uint32_t read(const controller::Controller& controller, controller::Register id) {
    return controller.peek32(controller::registerInfo(id).address(controller.generation()));
}

QStringList textsOnPanel(const controller::Controller& controller) {
    QStringList texts;
    for (const std::string& text : controller.textOnPanel()) {
        texts += QString::fromLatin1(text.data(), static_cast<int>(text.size())).trimmed();
    }
    return texts;
}

bool anyMatches(const QString& pattern, const QStringList& texts) {
    return std::any_of(texts.begin(), texts.end(),
                       [&pattern](const QString& text) { return matchesPattern(pattern, text); });
}

} // namespace

bool showsText(const controller::Controller& controller, const QString& pattern) {
    return anyMatches(pattern, textsOnPanel(controller));
}

bool isQuiet(const controller::Controller& controller) {
    using controller::Register;
    return read(controller, Register::CmdRead) == read(controller, Register::CmdWrite) &&
           read(controller, Register::DlSwap) == 0;
}

void FrameSequence::start(std::vector<script::FrameStep> steps,
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

void FrameSequence::frameScanned(const controller::Controller& controller) {
    ++m_framesSinceEntry;
    play(controller);
}

void FrameSequence::play(const controller::Controller& controller) {
    while (m_current < m_steps.size()) {
        Event event;
        event.step = m_current;
        if (!stepEnds(m_steps[m_current], controller, event)) {
            return;
        }
        m_report(event);
        if (!event.failure.isEmpty()) {
            stop();
            return;
        }
        ++m_current;
        enterStep(controller);
    }
}

bool FrameSequence::stepEnds(const script::FrameStep& step,
                             const controller::Controller& controller, Event& event) {
    if (const auto* frames = std::get_if<script::WaitFrames>(&step)) {
        return m_framesSinceEntry >= frames->count;
    }
    if (const auto* swaps = std::get_if<script::WaitSwaps>(&step)) {
        return controller.listsSwapped() - m_swapsAtEntry >= swaps->count;
    }
    if (const auto* reads = std::get_if<script::WaitReads>(&step)) {
        return controller.touchTagReads() - m_readsAtEntry >= reads->count;
    }
    if (const auto* text = std::get_if<script::WaitText>(&step)) {
        return showsText(controller, text->pattern) == text->present;
    }
    if (std::holds_alternative<script::WaitQuiet>(step)) {
        return isQuiet(controller);
    }
    if (const auto* expected = std::get_if<script::ExpectText>(&step)) {
        if (showsText(controller, expected->pattern) != expected->present) {
            event.failure = QStringLiteral("the panel shows: \"%1\"")
                                .arg(textsOnPanel(controller).join(QStringLiteral("\", \"")));
        }
        return true;
    }
    const auto& screenshot = std::get<script::Screenshot>(step);
    if (screenshot.now || isQuiet(controller)) {
        event.picture = toImage(controller.frame().picture);
        return true;
    }
    return false;
}

} // namespace panel
