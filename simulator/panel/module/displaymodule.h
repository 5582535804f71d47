#pragma once

#include "board.h"
#include "controller.h"
#include "fairmutex.h"
#include "observers.h"
#include "registers.h"

#include <chrono>
#include <mutex>
#include <vector>

namespace panel {

// Looks at what happens in the display module. Calls come on the thread that brought the model on,
// with the module locked: they must be quick and must not call the module.
class Watcher {
public:
    Watcher() = default;
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;
    virtual ~Watcher() = default;

    virtual void frameScanned(const controller::Controller& /*controller*/) {}
    // The host reads the touched tag, and has not got it yet. Its transaction may end much later.
    virtual void touchTagRead(int /*tag*/) {}
    virtual void transactionEnded(const controller::Transaction& /*transaction*/) {}
    virtual void complained(const std::string& /*text*/) {}
    // A finger is put on, or moved to, this panel pixel; or lifted.
    virtual void touched(int /*x*/, int /*y*/, controller::Nanoseconds /*now*/) {}
    virtual void released(controller::Nanoseconds /*now*/) {}
};

// The controller with its panel on the board's wires, living in real time. Every function may be
// called from any thread.
//
// On a machine that cannot draw frames as fast as they are due, or that has paused the process, the
// panel's time falls behind the clock's, which is never made up for. It stands still while it is
// paused: the bus answers, but nothing comes to an end, and the coprocessor takes no commands.
class DisplayModule : public board::Wires, private controller::Observer {
public:
    explicit DisplayModule(controller::Generation generation);
    ~DisplayModule() override;

    // Watchers are not owned, and are called in the order in which they were added.
    void addWatcher(Watcher* watcher);
    void removeWatcher(Watcher* watcher);
    // The same for who wants to know more; it is called in the same way.
    void addObserver(controller::Observer* observer);
    void removeObserver(controller::Observer* observer);

    // Brings the model up to the present; to be called at least 60 times a second, so that frames
    // come when they are due also while the application is silent.
    void advance();

    // How fast the panel's time runs beside the clock's, from slowest to fastest.
    static constexpr double slowest = 0.001;
    static constexpr double fastest = 20;
    void setSpeed(double factor);
    double speed() const;
    void setPaused(bool paused);
    bool isPaused() const;
    // These pause it, too. On to the end of a frame, with all that the coprocessor can do till
    // then; where nothing is scanned, by a sixtieth of a second.
    void stepFrame();
    // The coprocessor takes one command from the ring. False: there is none, or one that waits for
    // the end of the frame.
    bool stepCommand();

    void touch(int x, int y);
    void release();
    void setIdentity(std::uint32_t chipId);
    void setOwnIdentity();
    void setAnswering(bool answering);
    void setStartTime(std::chrono::milliseconds time);
    void setCoprocessorStalled(bool stalled);
    void breakCoprocessor();

    struct Counts {
        std::uint32_t frames = 0; // since construction, over all power cycles
        std::uint32_t swaps = 0;
        std::uint32_t touchTagReads = 0;
        std::uint8_t lastTagRead = 0; // by the last of these
    };
    Counts counts() const;
    controller::PanelState panel() const;
    std::int32_t registerValue(controller::Register id) const; // without side effects
    controller::Picture picture() const;                       // what the list now shown draws

    // Runs `look` with the module locked.
    template<typename Look>
    auto locked(Look look) const {
        const std::lock_guard lock(m_mutex);
        return look(static_cast<const controller::Controller&>(m_controller));
    }

    // board::Wires
    void powerDown(bool high) override;
    void chipSelect(bool high) override;
    void transfer(const std::uint8_t* sent, std::uint8_t* received, std::size_t length) override;

private:
    controller::Nanoseconds now();
    void frameScanned(std::uint32_t number, controller::Nanoseconds now) override;
    void transactionEnded(const controller::Transaction& transaction) override;
    void complained(const std::string& text) override;

    void pause(bool paused);

    mutable FairMutex m_mutex; // guards all below
    std::chrono::steady_clock::time_point m_clock = std::chrono::steady_clock::now();
    double m_speed = 1;
    bool m_paused = false;
    controller::Nanoseconds m_now = 0; // how far the model has been brought
    controller::Controller m_controller;
    Observers m_observers; // this among them
    std::uint32_t m_frames = 0;
    std::vector<Watcher*> m_watchers;
};

} // namespace panel
