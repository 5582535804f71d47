#include "session.h"

#include "textpattern.h"

#include <algorithm>
#include <cstdio>

namespace panel {

namespace {

// The chip notices a finger at the start of a frame and knows the tag under it at its end.
constexpr std::uint32_t framesUntilTag = 2;
// One read to notice, one when what that caused has been drawn, and one more because the keypad
// draws its keys only after its own first read.
constexpr std::uint32_t readsUntilDrawn = 3;

QString quoted(const QStringList& texts) {
    return texts.isEmpty() ? QStringLiteral("none")
                           : '"' + texts.join(QStringLiteral("\", \"")) + '"';
}

bool isAsAwaited(const script::WaitExit& wait, const ProcessEnd& end) {
    if (wait.signal) {
        return end.bySignal && end.code == *wait.signal;
    }
    return !wait.status || (!end.bySignal && end.code == *wait.status);
}

bool sameLines(const QStringList& patterns, const QStringList& lines) {
    return std::equal(patterns.begin(), patterns.end(), lines.begin(), lines.end(), matchesPattern);
}

} // namespace

// One function for each kind of action. It is called until it is done; enter() tells the first
// call from the later ones.
class Session::Player {
public:
    Player(Session& session, bool first)
        : m_session(session), m_rig(session.m_rig), m_first(first) {}

    Progress operator()(const script::FrameStep& /*step*/) const {
        if (m_first) {
            m_session.startFrames();
        }
        return Progress::Waiting; // frameStepEnded() goes on
    }
    Progress operator()(const script::WaitTime& wait) const {
        return doneIf(m_session.m_sinceEntry.hasExpired(wait.duration.count()));
    }
    Progress operator()(const script::WaitRequest& wait) const {
        return doneIf(m_rig.requests().take(wait.pattern));
    }
    Progress operator()(const script::WaitLog& wait) const {
        return doneIf(m_rig.log().take(wait.pattern));
    }
    Progress operator()(const script::WaitConnection& wait) const {
        return doneIf((m_rig.server().connections() > 0) == wait.connected);
    }
    Progress operator()(const script::WaitExit& wait) const {
        const auto& end = m_rig.application().lastEnd();
        if (!end) {
            if (!m_rig.application().isRunning()) {
                m_session.failStatement(ExitStatus::NotMet,
                                        QStringLiteral("the application is not running"));
            }
            return Progress::Waiting;
        }
        if (!isAsAwaited(wait, *end)) {
            m_session.failStatement(ExitStatus::NotMet,
                                    QStringLiteral("it ended with %1").arg(end->text()));
        }
        return Progress::Done;
    }
    Progress operator()(const script::Finger& finger) const {
        if (m_first) {
            if (finger.action == script::Finger::Action::Release) {
                m_rig.module().release();
            } else {
                m_rig.module().touch(finger.x, finger.y);
            }
            m_session.startNotice();
            m_session.m_tapReleased = false;
        }
        if (finger.now) {
            return Progress::Done;
        }
        const bool tapToLift =
            finger.action == script::Finger::Action::Tap && !m_session.m_tapReleased;
        if (tapToLift ? !m_session.tagRead() : !m_session.noticed()) {
            return Progress::Waiting;
        }
        if (tapToLift) {
            m_rig.module().release();
            m_session.startNotice();
            m_session.m_tapReleased = true;
            return Progress::Waiting;
        }
        return Progress::Done;
    }
    Progress operator()(const script::ServerSwitch& server) const {
        if (!server.on) {
            m_rig.server().stop();
        } else if (!m_rig.server().start()) {
            m_session.failStatement(ExitStatus::PortTaken, m_rig.server().error());
        }
        return Progress::Done;
    }
    Progress operator()(const script::ServerValues& values) const {
        m_rig.server().apply([&values](server::MeasurementServer& server) {
            if (values.values) {
                server.setFixedSample(*values.values);
            } else {
                server.clearFixedSample();
            }
        });
        return Progress::Done;
    }
    Progress operator()(const script::ServerFault& fault) const {
        m_rig.server().apply(
            [&fault](server::MeasurementServer& server) { server.setFault(fault.fault); });
        return Progress::Done;
    }
    Progress operator()(const script::ServerReply& reply) const {
        m_rig.server().apply([&reply](server::MeasurementServer& server) {
            if (reply.reply) {
                server.setReply(reply.command, *reply.reply);
            } else {
                server.clearReply(reply.command);
            }
        });
        return Progress::Done;
    }
    Progress operator()(const script::ServerParams& params) const {
        m_rig.server().apply([&params](server::MeasurementServer& server) {
            server.setParams({params.timeConstant, params.levels});
        });
        return Progress::Done;
    }
    Progress operator()(const script::ApplicationSwitch& application) const {
        if (!application.on) {
            m_rig.application().kill();
        } else if (!m_rig.application().start()) {
            m_session.failStatement(ExitStatus::ApplicationNotStarted, m_rig.application().error());
        }
        return Progress::Done;
    }
    Progress operator()(const script::BoardTransfers& transfers) const {
        m_rig.board().setTransfersFail(!transfers.working);
        return Progress::Done;
    }
    Progress operator()(const script::ControllerIdentity& identity) const {
        m_rig.module().setIdentity(identity.word);
        return Progress::Done;
    }
    Progress operator()(const script::ControllerAnswering& answering) const {
        m_rig.module().setAnswering(answering.answering);
        return Progress::Done;
    }
    Progress operator()(const script::CoprocessorStalled& coprocessor) const {
        m_rig.module().setCoprocessorStalled(coprocessor.stalled);
        return Progress::Done;
    }
    Progress operator()(const script::AllowComplaint& complaint) const {
        m_rig.complaints().allow(complaint.pattern);
        return Progress::Done;
    }
    Progress operator()(const script::Mark& /*mark*/) const {
        m_rig.requests().mark();
        m_rig.log().mark();
        m_session.m_markedKilobytes = m_rig.application().residentKilobytes();
        return Progress::Done;
    }
    Progress operator()(const script::ExpectRequests& expected) const {
        const QStringList requests = m_rig.requests().since(expected.withData);
        if (!sameLines(expected.patterns, requests)) {
            m_session.failStatement(ExitStatus::NotMet,
                                    QStringLiteral("the requests were %1").arg(quoted(requests)));
        }
        return Progress::Done;
    }
    Progress operator()(const script::ExpectNoRequest& expected) const {
        for (const QString& request : m_rig.requests().since(true)) {
            if (matchesPattern(expected.pattern, request)) {
                m_session.failStatement(ExitStatus::NotMet,
                                        QStringLiteral("there was \"%1\"").arg(request));
            }
        }
        return Progress::Done;
    }
    Progress operator()(const script::ExpectLog& expected) const {
        const QStringList lines = m_rig.log().since();
        if (!sameLines(expected.patterns, lines)) {
            m_session.failStatement(ExitStatus::NotMet,
                                    QStringLiteral("the lines were %1").arg(quoted(lines)));
        }
        return Progress::Done;
    }
    Progress operator()(const script::ExpectRegister& expected) const {
        const std::int32_t value = m_rig.module().registerValue(expected.id);
        if (value != expected.value) {
            m_session.failStatement(ExitStatus::NotMet, QStringLiteral("it holds %1").arg(value));
        }
        return Progress::Done;
    }
    Progress operator()(const script::ExpectMemoryGrowth& expected) const {
        const int now = m_rig.application().residentKilobytes();
        if (now - m_session.m_markedKilobytes > expected.atMostKilobytes) {
            m_session.failStatement(ExitStatus::NotMet,
                                    QStringLiteral("it grew from %1 kB to %2 kB")
                                        .arg(m_session.m_markedKilobytes)
                                        .arg(now));
        }
        return Progress::Done;
    }
    Progress operator()(const script::Report& /*report*/) const {
        std::printf("%s", qUtf8Printable(m_rig.statistics()));
        std::fflush(stdout);
        return Progress::Done;
    }
    Progress operator()(const script::End& /*end*/) const {
        m_session.endOfScript();
        return Progress::Waiting;
    }

private:
    static Progress doneIf(bool done) { return done ? Progress::Done : Progress::Waiting; }

    Session& m_session;
    Rig& m_rig;
    const bool m_first;
};

Session::Session(script::Script script, std::chrono::milliseconds timeLimit, Rig& rig)
    : m_statements(std::move(script.statements)), m_rig(rig),
      m_frames([this](const FrameSequence::Event& event) {
          QMetaObject::invokeMethod(
              this, [this, event] { frameStepEnded(event); }, Qt::QueuedConnection);
      }) {
    m_timeLimit.setSingleShot(true);
    m_timeLimit.setInterval(timeLimit);
    connect(&m_timeLimit, &QTimer::timeout, this, [this] {
        failStatement(ExitStatus::TimeLimit, QStringLiteral("the time limit is over"));
    });
    m_rig.module().addWatcher(&m_frames);
    connect(&m_rig, &Rig::ticked, this, &Session::play);
    connect(&m_rig, &Rig::requestReceived, this, &Session::play);
    connect(&m_rig, &Rig::complained, this, [this](const QString& text) {
        failStatement(ExitStatus::Complaint, QStringLiteral("the controller complained: ") + text);
    });
    connect(&m_rig.application(), &Application::ended, this, &Session::applicationEnded);
}

Session::~Session() {
    m_rig.module().removeWatcher(&m_frames);
}

void Session::start() {
    m_started = true;
    m_timeLimit.start();
    play();
}

void Session::play() {
    while (m_started && !isOver()) {
        if (m_current == m_statements.size()) {
            endOfScript();
            return;
        }
        const bool first = !m_entered;
        if (first) {
            m_entered = true;
            m_sinceEntry.start();
        }
        if (std::visit(Player(*this, first), current().action) == Progress::Waiting) {
            checkLimit();
            return;
        }
        leaveStatement();
    }
}

void Session::leaveStatement() {
    ++m_current;
    m_entered = false;
}

void Session::checkLimit() {
    const bool isTime = std::holds_alternative<script::WaitTime>(current().action);
    if (!isOver() && !isTime && m_sinceEntry.hasExpired(current().limit.count())) {
        failStatement(ExitStatus::NotMet,
                      QStringLiteral("not within %1 ms").arg(current().limit.count()));
    }
}

void Session::endOfScript() {
    if (m_pictureFailure.isEmpty()) {
        end(ExitStatus::Success, {});
    } else {
        end(ExitStatus::PictureDiffers, m_pictureFailure);
    }
}

void Session::failStatement(ExitStatus status, const QString& why) {
    if (m_current < m_statements.size()) {
        end(status, QStringLiteral("%1:%2: %3: %4")
                        .arg(m_name)
                        .arg(current().line)
                        .arg(current().text, why));
    } else {
        end(status, why);
    }
}

void Session::end(ExitStatus status, const QString& message) {
    if (!m_over) {
        m_over = true;
        emit ended(status, message);
    }
}

// Hands all frame statements from the current one on to the sequence.
void Session::startFrames() {
    std::vector<script::FrameStep> steps;
    for (std::size_t i = m_current; i < m_statements.size(); ++i) {
        const auto* step = std::get_if<script::FrameStep>(&m_statements[i].action);
        if (step == nullptr) {
            break;
        }
        steps.push_back(*step);
    }
    m_firstFrameStatement = m_current;
    m_rig.module().locked([this, &steps](const controller::Controller& controller) {
        m_frames.start(std::move(steps), controller);
    });
}

void Session::frameStepEnded(const FrameSequence::Event& event) {
    if (isOver()) {
        return;
    }
    m_current = m_firstFrameStatement + event.step;
    if (!event.failure.isEmpty()) {
        failStatement(ExitStatus::NotMet, event.failure);
        return;
    }
    if (event.picture) {
        const auto& step = std::get<script::FrameStep>(current().action);
        keepPicture(std::get<script::Screenshot>(step).name, *event.picture);
    }
    leaveStatement();
    const bool sequenceGoesOn = m_current < m_statements.size() &&
                                std::holds_alternative<script::FrameStep>(current().action);
    if (sequenceGoesOn) {
        m_entered = true;
        m_sinceEntry.start();
    } else {
        play();
    }
}

void Session::keepPicture(const QString& name, const QImage& image) {
    const PictureStore::Outcome outcome = m_rig.pictures().take(name, image);
    switch (outcome.result) {
    case PictureStore::Result::NotWritten:
        failStatement(ExitStatus::FileNotWritten, outcome.text);
        break;
    case PictureStore::Result::Different:
    case PictureStore::Result::Missing:
        std::fprintf(stderr, "panelsim: %s\n", qUtf8Printable(outcome.text));
        if (m_pictureFailure.isEmpty()) {
            m_pictureFailure = outcome.text;
        }
        break;
    case PictureStore::Result::Kept:
    case PictureStore::Result::Equal:
    case PictureStore::Result::Renewed:
        break;
    }
}

void Session::startNotice() {
    m_framesAtTouch = m_rig.module().counts().frames;
    m_readsFrom.reset();
}

bool Session::noticed() {
    const DisplayModule::Counts counts = m_rig.module().counts();
    if (counts.frames - m_framesAtTouch < framesUntilTag) {
        return false;
    }
    if (!m_readsFrom) {
        m_readsFrom = counts.touchTagReads;
    }
    return counts.touchTagReads - *m_readsFrom >= readsUntilDrawn;
}

// Whether the application knows what the finger is on. Where that is nothing, there is nothing to
// know, and it has had its time.
bool Session::tagRead() {
    if (noticed()) {
        return true;
    }
    const DisplayModule::Counts counts = m_rig.module().counts();
    return m_readsFrom && counts.touchTagReads > *m_readsFrom && counts.lastTagRead != 0;
}

void Session::applicationEnded() {
    const ProcessEnd end = *m_rig.application().lastEnd();
    const script::WaitExit* ahead = exitAhead();
    if (ahead == nullptr || !isAsAwaited(*ahead, end)) {
        failStatement(ExitStatus::ApplicationExited,
                      QStringLiteral("the application ended with %1").arg(end.text()));
        return;
    }
    play();
}

// The end that the script awaits of the application that is running now.
const script::WaitExit* Session::exitAhead() const {
    for (std::size_t i = m_current; i < m_statements.size(); ++i) {
        const script::Action& action = m_statements[i].action;
        if (std::holds_alternative<script::ApplicationSwitch>(action)) {
            return nullptr;
        }
        if (const auto* wait = std::get_if<script::WaitExit>(&action)) {
            return wait;
        }
    }
    return nullptr;
}

} // namespace panel
