#pragma once

#include "events.h"
#include "generator.h"
#include "panelcheck.h"
#include "recorder.h"
#include "rig.h"
#include "serverdoor.h"
#include "vitalsigns.h"

#include <QElapsedTimer>
#include <QObject>

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <memory>

namespace soak {

struct Options {
    std::uint32_t seed = 1;
    std::chrono::milliseconds duration{120000};
    QString application;
    QString output; // directory for what a failure leaves
};

// The whole test: random touches on the application until the time is over or something is not as
// the model has it.
class Soak : public QObject {
    Q_OBJECT

public:
    enum class Result { Passed, Failed, CouldNotRun };

    explicit Soak(Options options);
    ~Soak() override;

    // Runs the event loop while it lasts.
    Result run();

    // Ends run() early, as if the time were over.
    void interrupt() { m_interrupted = true; }

private:
    struct Figures {
        int touches = 0;
        int pictures = 0; // looked at
        int misses = 0;   // times client and server fell out of step without our doing
        std::array<int, screenCount> visits{};
        std::map<std::string, int> requests; // by first word
        std::map<std::string, int> faults;
    };

    bool startInstrument();
    bool waitUntil(const std::function<bool()>& condition, Milliseconds limit);
    bool waitForReads(int frames, int reads);

    void perform(const Action& action);
    void change(const Action& action);
    void readEvents();
    void takeEvents();
    bool isOvertaken() const;
    Event nextEvent();
    void handle(const Event& event);
    void violated(const Violation& violation);
    bool isLateReply();
    void settle();
    void checkFinger();
    void checkPanel();
    std::optional<std::string> panelMismatch();
    void checkCoprocessor();
    void checkVitalSigns();
    void noticeMisses();

    void fail(const QString& what, const Violation& violation = {}, const Texts& expected = {});
    bool failed() const { return !m_failure.isEmpty(); }
    void leaveTraces();
    void showProgress();
    void printTable() const;

    const Options m_options;
    EventQueue m_events;
    std::deque<Event> m_pending; // taken from there, not handled yet
    std::unique_ptr<panel::Rig> m_rig;
    std::unique_ptr<TagWatcher> m_watcher;
    std::unique_ptr<ServerDoor> m_server;
    Generator m_generator;
    Recorder m_recorder;
    FlowModel m_model;
    PanelCheck m_panel;
    std::optional<Pixel> m_finger;
    int m_lastTag = 0;
    bool m_replying = true;  // the server is there, in good order or not
    int m_uselessLogged = 0; // lines of the application about replies of no use
    int m_uselessOffset = 0; // of those, how many the model need not explain
    bool m_newlyInStep = false;
    VitalSigns m_first; // after a while
    VitalSigns m_most;
    QElapsedTimer m_elapsed;
    QElapsedTimer m_sinceProgress;
    QElapsedTimer m_sinceVitalSigns;
    Figures m_figures;
    Screen m_lastScreen = Screen::Counter;
    bool m_interrupted = false;
    QString m_failure;
    Violation m_violation;
    Texts m_expected;
};

} // namespace soak
