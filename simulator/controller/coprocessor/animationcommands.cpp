#include "coprocessor.h"
#include "dlwords.h"
#include "fixedmath.h"
#include "spinner.h"
#include "touchengine.h"

#include <algorithm>
#include <utility>

// The coprocessor's commands that go on from frame to frame.

namespace controller {

namespace {

constexpr std::uint32_t untouched = 0xFFFFFFFF; // REG_TOUCH_RAW_XY
constexpr std::uint32_t logoFrames = 120;
constexpr unsigned calibrationPoints = 3;

// Back and forth between 0 and `range`, one step a frame.
int bounced(std::uint32_t frame, int range) {
    if (range <= 0) {
        return 0;
    }
    const int position = static_cast<int>(frame % (2U * static_cast<unsigned>(range)));
    return position < range ? position : 2 * range - position;
}

} // namespace

void Coprocessor::startOverlay(std::function<void(Words&, std::uint32_t frame)> draw) {
    Overlay overlay;
    overlay.length = listLength();
    for (std::size_t i = 0; i < overlay.length; ++i) {
        overlay.list[i] = m_memory.listWord(i);
    }
    overlay.draw = std::move(draw);
    Words words;
    overlay.draw(words, 0);
    if (overlay.length + words.size() >= displayListWords) {
        fault("display list overflow");
    }
    m_overlay = std::move(overlay);
}

void Coprocessor::showOverlay() {
    if (!m_overlay) {
        return;
    }
    Words words;
    m_overlay->draw(words, m_overlay->frame++);
    words.push_back(dl::display());
    const std::size_t room = displayListWords - m_overlay->length;
    std::copy_n(words.begin(), std::min(words.size(), room),
                m_overlay->list.begin() + static_cast<std::ptrdiff_t>(m_overlay->length));
    m_port.showList(m_overlay->list);
}

void Coprocessor::stopAnimations() {
    m_overlay.reset();
    m_sketch.reset();
    m_saverFrame.reset();
}

Coprocessor::Outcome Coprocessor::spinner() {
    Spinner spinner;
    spinner.x = low(0);
    spinner.y = high(0);
    spinner.style = lowUnsigned(1);
    spinner.scale = highUnsigned(1);
    startOverlay([this, spinner](Words& words, std::uint32_t frame) {
        appendSpinner(words, m_generation, panelHeight(), spinner, frame);
    });
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::stop() {
    stopAnimations();
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::sync() {
    if (!m_syncFrame) {
        m_syncFrame = m_port.framesScanned();
    }
    if (m_port.isScanning() && *m_syncFrame == m_port.framesScanned()) {
        return Outcome::Wait;
    }
    m_syncFrame.reset();
    return Outcome::Done;
}

Coprocessor::Outcome Coprocessor::coldStart() {
    m_colors = {};
    m_matrix.loadIdentity();
    m_fonts.reset();
    m_base = 10;
    m_pointer = 0;
    m_tracks.clear();
    m_trackedTag = 0;
    return Outcome::Done;
}

// --- calibration

Coprocessor::Outcome Coprocessor::calibrate() {
    if (!m_calibration) {
        m_calibration = Calibration{};
        const int w = panelWidth();
        const int h = panelHeight();
        const std::array<Point, calibrationPoints> dots = {
            {{w / 10, h / 10}, {w * 9 / 10, h / 2}, {w / 2, h * 9 / 10}}};
        for (std::size_t i = 0; i < dots.size(); ++i) {
            m_calibration->points[i].tx = dots[i].x;
            m_calibration->points[i].ty = dots[i].y;
        }
        startOverlay([this](Words& words, std::uint32_t) {
            if (m_calibration && m_calibration->touched < calibrationPoints) {
                const PointPair& dot = m_calibration->points[m_calibration->touched];
                Painter(words, m_generation)
                    .disc(dot.tx * subpixels, dot.ty * subpixels, panelHeight() * subpixels / 32);
            }
        });
    }
    if (m_calibration->touched < calibrationPoints) {
        return Outcome::Wait;
    }
    std::optional<Affine> transform = affineThrough(m_calibration->points, 65536);
    if (transform) {
        // The dots' pixels are touched in their middle.
        transform->c = saturated(std::int64_t{transform->c} + 32768);
        transform->f = saturated(std::int64_t{transform->f} + 32768);
        setTouchTransform(*transform);
    }
    putResult(0, transform ? 1 : 0);
    m_calibration.reset();
    stopAnimations();
    return Outcome::Done;
}

void Coprocessor::watchCalibration() {
    if (!m_calibration || m_calibration->touched == calibrationPoints) {
        return;
    }
    const std::uint32_t raw = m_registers[Register::TouchRawXy];
    if (raw == untouched) {
        m_calibration->released = true;
    } else if (m_calibration->released) {
        PointPair& point = m_calibration->points[m_calibration->touched++];
        point.x = static_cast<std::int32_t>(raw >> 16U);
        point.y = static_cast<std::int32_t>(raw & 0xFFFFU);
        m_calibration->released = false;
    }
}

// --- the built-in logo

// A disc that grows on white, and what follows from it: after the animation the ring is empty with
// both pointers at its start, wherever they were. Without a scan there are no frames to wait for.
Coprocessor::Outcome Coprocessor::logo() {
    if (!m_logoFrame) {
        m_logoFrame = 0;
        m_registers.set(Register::CmdDl, 0);
        m_listFull = false;
        startOverlay([this](Words& words, std::uint32_t frame) {
            words.push_back(dl::clearColorRgb(0xFFFFFF));
            words.push_back(dl::clear(true, true, true));
            const int largest = panelHeight() * subpixels / 4;
            const int radius = static_cast<int>(std::min(frame, logoFrames)) * largest /
                               static_cast<int>(logoFrames);
            Painter painter(words, m_generation);
            painter.color(m_colors.foreground);
            painter.disc(panelWidth() * subpixels / 2, panelHeight() * subpixels / 2, radius);
        });
    }
    if (m_port.isScanning() && *m_logoFrame < logoFrames) {
        return Outcome::Wait;
    }
    m_logoFrame.reset();
    stopAnimations();
    m_registers.set(Register::CmdRead, 0);
    m_registers.set(Register::CmdWrite, 0);
    return Outcome::Restarted;
}

// --- screen saver, sketch, tracking

// Moves the vertex in MACRO_0, for a list that draws a bitmap with it.
Coprocessor::Outcome Coprocessor::screenSaver() {
    m_saverFrame = 0;
    return Outcome::Done;
}

void Coprocessor::drawScreenSaver() {
    if (!m_saverFrame) {
        return;
    }
    const std::uint32_t frame = (*m_saverFrame)++;
    // A bitmap of about a third of the panel stays on it.
    const int x = bounced(frame, panelWidth() * 2 / 3);
    const int y = bounced(frame, panelHeight() * 2 / 3);
    m_registers.set(Register::Macro0, dl::vertex2f(x * subpixels, y * subpixels));
}

Coprocessor::Outcome Coprocessor::sketch() {
    m_sketch = Sketch{low(0), high(0), low(1), high(1), argument(2), argument(3) == format::L1};
    return Outcome::Done;
}

// The same for a capacitive panel; its last word also says how often it is sampled.
Coprocessor::Outcome Coprocessor::cSketch() {
    m_sketch = Sketch{low(0), high(0), low(1), high(1), argument(2), lowUnsigned(3) == format::L1};
    return Outcome::Done;
}

void Coprocessor::drawSketch() {
    if (!m_sketch || m_registers[Register::TouchRawXy] == untouched) {
        return;
    }
    const std::uint32_t screen = m_registers[Register::TouchScreenXy];
    const int x = highHalf(screen) - m_sketch->x;
    const int y = lowHalf(screen) - m_sketch->y;
    if (x < 0 || y < 0 || x >= m_sketch->width || y >= m_sketch->height) {
        return;
    }
    const int stride = m_sketch->oneBit ? (m_sketch->width + 7) / 8 : m_sketch->width;
    const int offset = y * stride + (m_sketch->oneBit ? x / 8 : x);
    const std::uint32_t address =
        (m_sketch->address + static_cast<std::uint32_t>(offset)) & addressMask;
    const std::uint8_t mark = m_sketch->oneBit
                                  ? static_cast<std::uint8_t>(m_memory.read8(address) |
                                                              0x80U >> static_cast<unsigned>(x % 8))
                                  : std::uint8_t{0xFF};
    m_bus.writeBytes(address, &mark, 1);
}

// One track for each tag; an area without extent ends it.
Coprocessor::Outcome Coprocessor::track() {
    const std::uint32_t tag = argument(2) & 0xFFU;
    m_tracks.erase(std::remove_if(m_tracks.begin(), m_tracks.end(),
                                  [tag](const Track& known) { return known.tag == tag; }),
                   m_tracks.end());
    if (low(1) > 0 && high(1) > 0) {
        m_tracks.push_back({low(0), high(0), low(1), high(1), tag});
    }
    return Outcome::Done;
}

// The tracker word: value of the touch along its track in the high half, tag in the low one. An
// area of 1 x 1 tracks turns around its point, any other one moves along its longer side.
void Coprocessor::followTracks() {
    if (m_registers[Register::TouchRawXy] == untouched) {
        m_trackedTag = 0;
        if (!m_tracks.empty()) {
            m_memory.write32(m_memory.layout().tracker, 0);
        }
        return;
    }
    if (m_trackedTag == 0) {
        m_trackedTag = m_registers[Register::TouchTag];
    }
    const auto track = std::find_if(m_tracks.begin(), m_tracks.end(), [this](const Track& known) {
        return known.tag == m_trackedTag;
    });
    if (track == m_tracks.end()) {
        return;
    }
    const std::uint32_t screen = m_registers[Register::TouchScreenXy];
    const int x = highHalf(screen) - track->x;
    const int y = lowHalf(screen) - track->y;
    std::uint32_t value = 0;
    if (track->width == 1 && track->height == 1) {
        value = (angleOf(x, y) + 0x8000U) & 0xFFFFU; // as DIAL: 0 straight down
    } else {
        const bool upright = track->height > track->width;
        const std::int64_t position = upright ? y : x;
        const std::int64_t length = upright ? track->height : track->width;
        value =
            static_cast<std::uint32_t>(clampTo<std::int64_t>(position * 65536 / length, 0, 0xFFFF));
    }
    m_memory.write32(m_memory.layout().tracker, value << 16U | track->tag);
}

} // namespace controller
