#include "displaymodule.h"

#include <algorithm>

namespace panel {

namespace {

// How much of the time that has passed the model is brought on at once: some eight frames.
constexpr std::chrono::nanoseconds longestStep = std::chrono::milliseconds(100);

// A frame is longer than that, so a step to its end passes no other.
constexpr controller::Nanoseconds smallStep = 100'000;
constexpr controller::Nanoseconds unscannedStep = 16'666'667;

} // namespace

DisplayModule::DisplayModule(controller::Generation generation) : m_controller(generation) {
    m_observers.add(this);
    m_controller.setObserver(&m_observers);
}

DisplayModule::~DisplayModule() {
    m_controller.setObserver(nullptr);
}

// Asked with the lock held, so that the model's time never runs backwards.
controller::Nanoseconds DisplayModule::now() {
    const auto clock = std::chrono::steady_clock::now();
    const std::chrono::nanoseconds passed =
        std::min<std::chrono::nanoseconds>(clock - m_clock, longestStep);
    m_clock = clock;
    if (!m_paused) {
        m_now +=
            static_cast<controller::Nanoseconds>(static_cast<double>(passed.count()) * m_speed);
    }
    return m_now;
}

void DisplayModule::setSpeed(double factor) {
    const std::lock_guard lock(m_mutex);
    now(); // until here it was another
    m_speed = std::clamp(factor, slowest, fastest);
}

double DisplayModule::speed() const {
    const std::lock_guard lock(m_mutex);
    return m_speed;
}

void DisplayModule::setPaused(bool paused) {
    const std::lock_guard lock(m_mutex);
    pause(paused);
}

void DisplayModule::pause(bool paused) {
    m_controller.advance(now());
    m_paused = paused;
    m_controller.setCoprocessorHalted(paused);
}

bool DisplayModule::isPaused() const {
    const std::lock_guard lock(m_mutex);
    return m_paused;
}

void DisplayModule::stepFrame() {
    const std::lock_guard lock(m_mutex);
    pause(true);
    m_controller.setCoprocessorHalted(false);
    const std::uint32_t frame = m_frames;
    const controller::Nanoseconds start = m_now;
    const auto isOver = [&] {
        return m_controller.panel().scanning ? m_frames != frame : m_now - start >= unscannedStep;
    };
    while (!isOver()) {
        m_controller.advance(m_now += smallStep);
    }
    m_controller.setCoprocessorHalted(true);
}

bool DisplayModule::stepCommand() {
    const std::lock_guard lock(m_mutex);
    pause(true);
    return m_controller.stepCoprocessor();
}

void DisplayModule::addObserver(controller::Observer* observer) {
    const std::lock_guard lock(m_mutex);
    m_observers.add(observer);
}

void DisplayModule::removeObserver(controller::Observer* observer) {
    const std::lock_guard lock(m_mutex);
    m_observers.remove(observer);
}

void DisplayModule::addWatcher(Watcher* watcher) {
    const std::lock_guard lock(m_mutex);
    m_watchers.push_back(watcher);
}

void DisplayModule::removeWatcher(Watcher* watcher) {
    const std::lock_guard lock(m_mutex);
    m_watchers.erase(std::remove(m_watchers.begin(), m_watchers.end(), watcher), m_watchers.end());
}

void DisplayModule::advance() {
    const std::lock_guard lock(m_mutex);
    m_controller.advance(now());
}

void DisplayModule::touch(int x, int y) {
    const std::lock_guard lock(m_mutex);
    m_controller.touch(x, y);
    for (Watcher* watcher : m_watchers) {
        watcher->touched(x, y, m_now);
    }
}

void DisplayModule::release() {
    const std::lock_guard lock(m_mutex);
    m_controller.release();
    for (Watcher* watcher : m_watchers) {
        watcher->released(m_now);
    }
}

void DisplayModule::setIdentity(std::uint32_t chipId) {
    const std::lock_guard lock(m_mutex);
    m_controller.setIdentity(chipId);
}

void DisplayModule::setOwnIdentity() {
    const std::lock_guard lock(m_mutex);
    m_controller.setOwnIdentity();
}

void DisplayModule::setStartTime(std::chrono::milliseconds time) {
    const std::lock_guard lock(m_mutex);
    m_controller.setStartTime(
        static_cast<controller::Nanoseconds>(std::chrono::nanoseconds(time).count()));
}

void DisplayModule::breakCoprocessor() {
    const std::lock_guard lock(m_mutex);
    m_controller.breakCoprocessor();
}

void DisplayModule::setAnswering(bool answering) {
    const std::lock_guard lock(m_mutex);
    m_controller.setAnswering(answering);
}

void DisplayModule::setCoprocessorStalled(bool stalled) {
    const std::lock_guard lock(m_mutex);
    m_controller.setCoprocessorStalled(stalled);
}

DisplayModule::Counts DisplayModule::counts() const {
    const std::lock_guard lock(m_mutex);
    return {m_frames, m_controller.listsSwapped(), m_controller.touchTagReads(),
            m_controller.lastTouchTagRead()};
}

controller::PanelState DisplayModule::panel() const {
    const std::lock_guard lock(m_mutex);
    return m_controller.panel();
}

std::int32_t DisplayModule::registerValue(controller::Register id) const {
    const std::lock_guard lock(m_mutex);
    const controller::RegisterInfo& info = controller::registerInfo(id);
    return static_cast<std::int32_t>(m_controller.peek32(info.address(m_controller.generation())));
}

controller::Picture DisplayModule::picture() const {
    const std::lock_guard lock(m_mutex);
    return m_controller.frame().picture;
}

void DisplayModule::powerDown(bool high) {
    const std::lock_guard lock(m_mutex);
    m_controller.setPowerDown(high, now());
}

void DisplayModule::chipSelect(bool high) {
    const std::lock_guard lock(m_mutex);
    m_controller.setChipSelect(high, now());
}

void DisplayModule::transfer(const std::uint8_t* sent, std::uint8_t* received, std::size_t length) {
    const std::lock_guard lock(m_mutex);
    const std::uint32_t readsBefore = m_controller.touchTagReads();
    for (std::size_t i = 0; i < length; ++i) {
        const std::uint8_t answer = m_controller.exchange(sent != nullptr ? sent[i] : 0, now());
        if (received != nullptr) {
            received[i] = answer;
        }
    }
    if (m_controller.touchTagReads() != readsBefore) {
        for (Watcher* watcher : m_watchers) {
            watcher->touchTagRead(m_controller.lastTouchTagRead());
        }
    }
}

void DisplayModule::frameScanned(std::uint32_t /*number*/, controller::Nanoseconds /*now*/) {
    ++m_frames;
    for (Watcher* watcher : m_watchers) {
        watcher->frameScanned(m_controller);
    }
}

void DisplayModule::transactionEnded(const controller::Transaction& transaction) {
    for (Watcher* watcher : m_watchers) {
        watcher->transactionEnded(transaction);
    }
}

void DisplayModule::complained(const std::string& text) {
    for (Watcher* watcher : m_watchers) {
        watcher->complained(text);
    }
}

} // namespace panel
