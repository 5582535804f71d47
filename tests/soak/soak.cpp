#include "soak.h"

#include "panelcontent.h"
#include "pictures.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace soak {

namespace {

constexpr Milliseconds startLimit = 60000;
constexpr Milliseconds noticeLimit = 30000;
constexpr Milliseconds panelLimit = 8000;
constexpr Milliseconds logLimit = 2000;
constexpr Milliseconds requestLimit = 5000; // on its way to a busy server
// As a session waits: the tag of a touch is known after two frames, and noticed and drawn after
// three reads.
constexpr int framesUntilTag = 2;
constexpr int readsUntilDrawn = 3;
// What the application may take on after a while: very little, and the connection in the making.
// Replies of a megabyte leave a larger heap behind.
constexpr int settlingMs = 30000;
constexpr int growthLimitKilobytes = 1024;
constexpr int hugeRepliesKilobytes = 24576;
constexpr int descriptorLimit = 2;
constexpr int vitalSignsMs = 2000;
constexpr int progressMs = 500;

} // namespace

Soak::Soak(Options options) : m_options(std::move(options)), m_generator(m_options.seed) {}

Soak::~Soak() {
    if (m_rig && m_watcher) {
        m_rig->module().removeWatcher(m_watcher.get());
    }
}

Soak::Result Soak::run() {
    if (!startInstrument()) {
        return Result::CouldNotRun;
    }
    m_elapsed.start();
    m_sinceProgress.start();
    m_sinceVitalSigns.start();
    while (!failed() && !m_interrupted && !m_elapsed.hasExpired(m_options.duration.count())) {
        perform(m_generator.next(m_model));
        showProgress();
    }
    if (failed()) {
        leaveTraces();
    }
    printTable();
    return failed() ? Result::Failed : Result::Passed;
}

bool Soak::startInstrument() {
    panel::Settings settings;
    settings.application = m_options.application;
    settings.quietApplication = true;
    settings.startApplication = false;
    settings.headless = true;
    m_rig = std::make_unique<panel::Rig>(settings);
    if (const panel::Rig::Failure failure = m_rig->start()) {
        std::printf("%s\n", qUtf8Printable(failure.text));
        return false;
    }
    connect(m_rig.get(), &panel::Rig::complained, this, [this](const QString& text) {
        fail(QStringLiteral("the controller complained: ") + text);
    });
    connect(&m_rig->application(), &panel::Application::ended, this, [this] {
        fail(QStringLiteral("the application ended with ") +
             m_rig->application().lastEnd()->text());
    });
    connect(&m_rig->application(), &panel::Application::wrote, this, [this](const QString& line) {
        const bool useless = line.startsWith(QLatin1String("Invalid JSON")) ||
                             line.startsWith(QLatin1String("Document is not an object"));
        m_uselessLogged += useless ? 1 : 0;
    });
    m_watcher = std::make_unique<TagWatcher>(m_events);
    m_rig->module().addWatcher(m_watcher.get());
    m_server = std::make_unique<ServerDoor>(m_rig->server(), m_events);

    m_recorder.start(m_options.seed);
    for (const Action& action : {m_generator.firstParams(), m_generator.values()}) {
        m_recorder.record(action);
        change(action);
    }
    m_recorder.applicationStarts();
    if (!m_rig->application().start()) {
        std::printf("%s\n", qUtf8Printable(m_rig->application().error()));
        return false;
    }
    const auto isShown = [this] {
        return m_rig->module().locked([](const controller::Controller& controller) {
            const auto texts = panel::textsOn(controller);
            return std::any_of(texts.begin(), texts.end(), [](const panel::PanelText& shown) {
                return shown.text == QStringLiteral("COUNTER MODE");
            });
        });
    };
    const bool shown = waitUntil(isShown, startLimit);
    if (!shown && !failed()) {
        fail(QStringLiteral("the counter screen did not come"));
    }
    settle();
    return true;
}

// Events are told to the model while waiting.
bool Soak::waitUntil(const std::function<bool()>& condition, Milliseconds limit) {
    const Milliseconds end = now() + limit;
    for (;;) {
        readEvents();
        if (failed() || condition()) {
            return !failed();
        }
        if (now() > end) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); // a tick comes soon
    }
}

bool Soak::waitForReads(int frames, int reads) {
    const auto before = m_rig->module().counts();
    std::optional<std::uint32_t> from;
    return waitUntil(
        [&] {
            const auto counts = m_rig->module().counts();
            if (counts.frames - before.frames < static_cast<std::uint32_t>(frames)) {
                return false;
            }
            if (!from) {
                from = counts.touchTagReads;
            }
            return counts.touchTagReads - *from >= static_cast<std::uint32_t>(reads);
        },
        noticeLimit);
}

void Soak::perform(const Action& action) {
    m_recorder.record(action);
    m_rig->requests().mark();
    m_rig->log().mark();
    switch (action.kind) {
    case Action::Kind::Touch:
        m_figures.touches += m_finger ? 0 : 1;
        m_finger = action.pixel;
        m_rig->module().touch(action.pixel.x, action.pixel.y);
        break;
    case Action::Kind::Lift:
        m_finger.reset();
        m_rig->module().release();
        break;
    case Action::Kind::Pause:
        waitUntil([until = now() + action.number] { return now() >= until; }, action.number + 1000);
        break;
    default:
        change(action);
        if (action.kind != Action::Kind::ServerStops) {
            readEvents();
            return; // nothing is to be noticed
        }
    }
    settle();
}

void Soak::change(const Action& action) {
    const QByteArray text = QByteArray::fromStdString(action.text);
    switch (action.kind) {
    case Action::Kind::Values:
        m_server->setValues(action.values);
        break;
    case Action::Kind::Params:
        m_server->setParams(action.number, action.values);
        break;
    case Action::Kind::Fault:
        m_server->setFault(*server::faultFromName(QString::fromLatin1(text)),
                           breaksStep(action.text));
        break;
    case Action::Kind::Reply:
        m_server->setReply(text.left(text.indexOf(' ')), text.mid(text.indexOf(' ') + 1) + '\n');
        break;
    case Action::Kind::UsualReply:
        m_server->clearReply(text);
        return;
    case Action::Kind::ServerStops:
        m_server->stop();
        break;
    case Action::Kind::ServerStarts:
        if (!m_server->start()) {
            fail(QStringLiteral("the server could not listen again: ") + m_rig->server().error());
        }
        break;
    default:
        break;
    }
    const bool isFault = action.kind == Action::Kind::Fault && action.text != "none";
    if (isFault || action.kind == Action::Kind::Reply) {
        ++m_figures.faults[action.text];
    } else if (action.kind == Action::Kind::ServerStops) {
        ++m_figures.faults["server stopped"];
    }
}

void Soak::takeEvents() {
    for (Event& event : m_events.take()) {
        m_pending.push_back(std::move(event));
    }
}

void Soak::readEvents() {
    takeEvents();
    while (!m_pending.empty() && !failed()) {
        handle(nextEvent());
    }
    if (failed()) {
        m_pending.clear();
    }
}

// Whether the application has done something else since it sent a request that has not come yet.
bool Soak::isOvertaken() const {
    return m_pending.front().kind == Event::Kind::TagRead && m_model.client().isBusy() &&
           m_model.client().inStep();
}

// The next event in the order in which the application did what it tells. Requests do not overtake
// each other, and nothing overtakes what the server does.
Event Soak::nextEvent() {
    const auto isOfServer = [](const Event& event) { return event.kind != Event::Kind::TagRead; };
    auto next = m_pending.begin();
    if (isOvertaken()) {
        const Milliseconds end = now() + requestLimit;
        next = std::find_if(m_pending.begin(), m_pending.end(), isOfServer);
        while (next == m_pending.end() && now() < end) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            takeEvents();
            next = std::find_if(m_pending.begin(), m_pending.end(), isOfServer);
        }
        if (next == m_pending.end() || next->kind != Event::Kind::Request) {
            next = m_pending.begin();
        }
    }
    Event event = std::move(*next);
    m_pending.erase(next);
    return event;
}

void Soak::handle(const Event& event) {
    Verdict verdict;
    switch (event.kind) {
    case Event::Kind::TagRead:
        m_lastTag = event.tag == 255 ? 0 : event.tag;
        verdict = m_model.tagRead(event.tag);
        break;
    case Event::Kind::Request:
        ++m_figures.requests[event.request.substr(0, event.request.find(' '))];
        verdict = m_model.request(event.request, event.reply, event.time);
        break;
    case Event::Kind::OutOfStep:
        m_model.fallOutOfStep();
        break;
    case Event::Kind::InStep:
        m_model.fallInStep(event.time);
        m_newlyInStep = true;
        break;
    }
    m_panel.note(m_model, event.time);
    if (m_model.screen() != m_lastScreen) {
        m_lastScreen = m_model.screen();
        ++m_figures.visits[static_cast<std::size_t>(m_lastScreen)];
    }
    if (verdict) {
        violated(*verdict);
    }
}

void Soak::violated(const Violation& violation) {
    if (isLateReply()) {
        ++m_figures.misses;
        m_model.fallOutOfStep();
        return;
    }
    fail(QString::fromStdString(violation.text), violation);
}

// Whether the application has complained about more replies than were of no use: one came later
// than it waits, which is no fault of its own.
bool Soak::isLateReply() {
    const auto isMore = [this] {
        return m_uselessLogged - m_uselessOffset > m_model.client().uselessReplies();
    };
    const Milliseconds end = now() + logLimit;
    while (!isMore() && now() < end && !failed()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return isMore();
}

void Soak::settle() {
    if (!waitForReads(framesUntilTag, readsUntilDrawn)) {
        fail(QStringLiteral("the application reads no touches any more"));
        return;
    }
    m_model.settle();
    noticeMisses();
    checkFinger();
    checkPanel();
    checkCoprocessor();
    if (m_sinceVitalSigns.isValid() && m_sinceVitalSigns.hasExpired(vitalSignsMs)) {
        m_sinceVitalSigns.start();
        checkVitalSigns();
    }
}

void Soak::noticeMisses() {
    const int useless = m_uselessLogged - m_uselessOffset;
    if (m_newlyInStep || !m_model.client().inStep()) {
        m_uselessOffset = m_uselessLogged - m_model.client().uselessReplies();
        m_newlyInStep = false;
    } else if (useless > m_model.client().uselessReplies()) {
        ++m_figures.misses;
        m_model.fallOutOfStep();
    }
    // A busy machine is late now and then; a client that is out of step all the time is at fault.
    if (m_figures.misses > 5 + m_figures.touches / 20) {
        fail(QStringLiteral("client and server fall out of step too often: %1 times")
                 .arg(m_figures.misses));
    }
    if (m_model.screen() != Screen::Keypad && m_model.client().isPollOverdue(now())) {
        fail(QStringLiteral("a run is active, but no poll comes"), {{}, "DATA?", {}});
    }
}

// The finger may lie on an item of a screen that has just come; the next read will tell.
void Soak::checkFinger() {
    const auto isRight = [this] {
        const int expected =
            m_finger ? tagAt(m_model.screen(), *m_finger).value_or(tag::none) : tag::none;
        return m_lastTag == expected && m_model.heldTag() == expected;
    };
    if (!failed() && !waitUntil(isRight, panelLimit)) {
        fail(QStringLiteral("the %1 screen gives the tag %2 where the finger is")
                 .arg(nameOf(m_model.screen()))
                 .arg(m_lastTag));
    }
}

std::optional<std::string> Soak::panelMismatch() {
    m_model.settle();
    return m_rig->module().locked([this](const controller::Controller& controller) {
        return m_panel.mismatch(m_model, controller.textOnPanel(), controller.frame().picture);
    });
}

void Soak::checkPanel() {
    if (failed()) {
        return;
    }
    ++m_figures.pictures;
    std::optional<std::string> mismatch;
    const auto isRight = [this, &mismatch] {
        noticeMisses();
        mismatch = panelMismatch();
        return !mismatch;
    };
    if (!waitUntil(isRight, panelLimit) && !failed()) {
        fail(QString::fromStdString(*mismatch), {}, m_panel.expectedTexts(m_model));
    }
}

void Soak::checkCoprocessor() {
    constexpr std::int32_t faulted = 0xFFF;
    if (m_rig->module().registerValue(controller::Register::CmdRead) == faulted) {
        fail(QStringLiteral("the coprocessor is faulted"));
    }
}

void Soak::checkVitalSigns() {
    const VitalSigns signs = vitalSignsOf(m_rig->application().processId());
    if (!m_elapsed.hasExpired(settlingMs)) {
        m_first = signs;
    }
    m_most.residentKilobytes = std::max(m_most.residentKilobytes, signs.residentKilobytes);
    m_most.threads = std::max(m_most.threads, signs.threads);
    m_most.descriptors = std::max(m_most.descriptors, signs.descriptors);
    const bool hadHugeReplies = m_figures.faults.count("huge") > 0;
    const int limit = growthLimitKilobytes + (hadHugeReplies ? hugeRepliesKilobytes : 0);
    if (signs.residentKilobytes > m_first.residentKilobytes + limit) {
        fail(QStringLiteral("the application's memory grew from %1 kB to %2 kB")
                 .arg(m_first.residentKilobytes)
                 .arg(signs.residentKilobytes));
    }
    if (signs.descriptors > m_first.descriptors + descriptorLimit) {
        fail(QStringLiteral("the application's descriptors grew from %1 to %2")
                 .arg(m_first.descriptors)
                 .arg(signs.descriptors));
    }
    if (signs.threads > m_first.threads) {
        fail(QStringLiteral("the application's threads grew from %1 to %2")
                 .arg(m_first.threads)
                 .arg(signs.threads));
    }
}

void Soak::fail(const QString& what, const Violation& violation, const Texts& expected) {
    if (!failed()) {
        m_failure = what;
        m_violation = violation;
        m_expected = expected;
    }
}

void Soak::leaveTraces() {
    QDir().mkpath(m_options.output);
    const QString base = QStringLiteral("%1/soak-%2").arg(m_options.output).arg(m_options.seed);
    const QString session = base + QStringLiteral(".session");
    QFile file(session);
    const QByteArray text = m_recorder.session(m_failure, m_violation, m_expected).toUtf8();
    const bool written = file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    const bool drawn = panel::toImage(m_rig->module().picture()).save(base + ".png");
    std::printf("\nFAILED after %.1f s: %s\n", static_cast<double>(m_elapsed.elapsed()) / 1000.0,
                qUtf8Printable(m_failure));
    std::printf("  seed     %u\n", m_options.seed);
    std::printf("  picture  %s.png%s\n", qUtf8Printable(base), drawn ? "" : " (not written)");
    std::printf(
        "  again    panelsim --headless --time-limit %llds --screenshots %s --script %s%s\n",
        static_cast<long long>(m_elapsed.elapsed() / 500 + 60), qUtf8Printable(m_options.output),
        qUtf8Printable(session), written ? "" : " (not written)");
}

void Soak::showProgress() {
    if (isatty(STDOUT_FILENO) == 0 || !m_sinceProgress.hasExpired(progressMs)) {
        return;
    }
    m_sinceProgress.start();
    const qint64 seconds = m_elapsed.elapsed() / 1000;
    int requests = 0;
    for (const auto& [name, count] : m_figures.requests) {
        requests += count;
    }
    int screens = 0;
    for (const int visits : m_figures.visits) {
        screens += visits;
    }
    int faults = 0;
    for (const auto& [name, count] : m_figures.faults) {
        faults += count;
    }
    std::printf("\r%lld:%02lld:%02lld  touches %d  screens %d  requests %d  server faults %d ",
                seconds / 3600, seconds / 60 % 60, seconds % 60, m_figures.touches, screens,
                requests, faults);
    std::fflush(stdout);
}

void Soak::printTable() const {
    std::printf("\n%-40s %10.0f\n", "seconds", static_cast<double>(m_elapsed.elapsed()) / 1000.0);
    std::printf("%-40s %10d\n%-40s %10d\n", "touches", m_figures.touches, "pictures looked at",
                m_figures.pictures);
    for (int screen = 0; screen < screenCount; ++screen) {
        std::printf("visits of %-30s %10d\n", nameOf(static_cast<Screen>(screen)),
                    m_figures.visits[static_cast<std::size_t>(screen)]);
    }
    for (const auto& [name, count] : m_figures.requests) {
        std::printf("requests %-31s %10d\n", name.c_str(), count);
    }
    for (const auto& [name, count] : m_figures.faults) {
        std::printf("server: %-32.32s %10d\n", name.c_str(), count);
    }
    std::printf("%-40s %10d\n", "replies that came too late", m_figures.misses);
    std::printf("%-40s %10d\n%-40s %10d\n", "memory after 30 s, kB", m_first.residentKilobytes,
                "memory at most, kB", m_most.residentKilobytes);
    std::printf("%-40s %10d\n%-40s %10d\n", "descriptors at most", m_most.descriptors,
                "threads at most", m_most.threads);
    std::fflush(stdout);
}

} // namespace soak
