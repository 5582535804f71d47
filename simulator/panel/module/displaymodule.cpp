#include "displaymodule.h"

#include <algorithm>

namespace panel {

namespace {

// How much of the time that has passed the model is brought on at once: some eight frames.
constexpr std::chrono::nanoseconds longestStep = std::chrono::milliseconds(100);

} // namespace

DisplayModule::DisplayModule(controller::Generation generation) : m_controller(generation) {
    m_controller.setObserver(this);
}

DisplayModule::~DisplayModule() {
    m_controller.setObserver(nullptr);
}

// Asked with the lock held, so that the model's time never runs backwards.
controller::Nanoseconds DisplayModule::now() {
    const std::chrono::nanoseconds elapsed = std::chrono::steady_clock::now() - m_start;
    const std::chrono::nanoseconds lost = elapsed - (m_now + longestStep);
    if (lost.count() > 0) {
        m_start += lost;
    }
    m_now = std::min(elapsed, m_now + longestStep);
    return static_cast<controller::Nanoseconds>(m_now.count());
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
}

void DisplayModule::release() {
    const std::lock_guard lock(m_mutex);
    m_controller.release();
}

void DisplayModule::setIdentity(std::uint32_t chipId) {
    const std::lock_guard lock(m_mutex);
    m_controller.setIdentity(chipId);
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
