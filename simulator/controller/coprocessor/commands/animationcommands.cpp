#include "animationcommands.h"

#include "calibration.h"
#include "displaylist.h"
#include "logo.h"
#include "matrixcommands.h"
#include "screensaver.h"
#include "sketch.h"
#include "spinner.h"
#include "touchengine.h"

#include <memory>
#include <optional>

namespace controller {

void AnimationCommands::addTo(CommandSet& set) {
    set.add(Command::Spinner, *this, &AnimationCommands::spinner);
    set.add(Command::Stop, *this, &AnimationCommands::stop);
    set.add(Command::Calibrate, *this, &AnimationCommands::calibrate);
    set.add(Command::Logo, *this, &AnimationCommands::logo);
    set.add(Command::ScreenSaver, *this, &AnimationCommands::screenSaver);
    set.add(Command::Sketch, *this, &AnimationCommands::sketch);
    set.add(Command::CSketch, *this, &AnimationCommands::cSketch);
    set.add(Command::Track, *this, &AnimationCommands::track);
}

void AnimationCommands::spinner(const Call& call) {
    Spinner::Settings settings;
    settings.center = {call.low(0) * subpixels, call.high(0) * subpixels};
    settings.style = call.lowUnsigned(1);
    settings.scale = call.highUnsigned(1);
    m_animations.setOverlay(
        std::make_unique<Overlay>(m_machine, std::make_shared<Spinner>(m_machine, settings)));
}

void AnimationCommands::stop(const Call&) {
    m_animations.stop();
}

Outcome AnimationCommands::calibrate(const Call& call) {
    if (showsFingers(m_machine.generation, m_machine.registers)) {
        m_machine.port.complain("CALIBRATE: no raw coordinates while five fingers are shown");
        call.putResult(m_machine.memory, 0, 0);
        return Progress::Done;
    }
    const auto dots = std::make_shared<Calibration>(m_machine);
    m_animations.setOverlay(std::make_unique<Overlay>(m_machine, dots));
    return [this, dots, call] {
        if (!dots->isOver()) {
            return Progress::Waiting;
        }
        const std::optional<Affine> transform = dots->transform();
        if (transform) {
            setTouchTransform(m_machine.registers, *transform);
        }
        call.putResult(m_machine.memory, 0, transform ? 1 : 0);
        m_animations.stop();
        return Progress::Done;
    };
}

// After the logo the ring is empty with both pointers at its start, wherever they were. Without a
// scan there are no frames to wait for.
Outcome AnimationCommands::logo(const Call&) {
    m_machine.list.restart();
    const auto disc = std::make_shared<Logo>(m_machine, m_colors.foreground);
    m_animations.setOverlay(std::make_unique<Overlay>(m_machine, disc));
    return [this, disc] {
        if (m_machine.port.isScanning() && !disc->isOver()) {
            return Progress::Waiting;
        }
        m_animations.stop();
        m_machine.registers.set(Register::CmdRead, 0);
        m_machine.registers.set(Register::CmdWrite, 0);
        return Progress::Restarted;
    };
}

void AnimationCommands::screenSaver(const Call&) {
    m_animations.setScreenSaver(std::make_unique<ScreenSaver>(m_machine));
}

void AnimationCommands::sketch(const Call& call) {
    const SketchPad pad{call.low(0),  call.high(0), call.low(1),
                        call.high(1), call[2],      call[3] == format::L1};
    m_animations.setSketch(std::make_unique<Sketch>(m_machine, pad));
}

// The same for a capacitive panel; its last word also says how often it is sampled.
void AnimationCommands::cSketch(const Call& call) {
    const SketchPad pad{call.low(0),  call.high(0), call.low(1),
                        call.high(1), call[2],      call.lowUnsigned(3) == format::L1};
    m_animations.setSketch(std::make_unique<Sketch>(m_machine, pad));
}

void AnimationCommands::track(const Call& call) {
    m_tracker.set({call.low(0), call.high(0), call.low(1), call.high(1), call[2] & 0xFFU});
}

} // namespace controller
