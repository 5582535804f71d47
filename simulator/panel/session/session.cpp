#include "session.h"

#include "applicationcommands.h"
#include "waitcommands.h"

#include <QFileInfo>

#include <cstdio>

namespace panel {

Session::Session(script::Script script, std::chrono::milliseconds timeLimit, Rig& rig)
    : m_statements(std::move(script.statements)), m_rig(rig), m_finger(rig.module()),
      m_frames(
          [this](const FrameSequence::Event& event) {
              QMetaObject::invokeMethod(
                  this, [this, event] { frameStepEnded(event); }, Qt::QueuedConnection);
          },
          &rig.inspector()) {
    m_timeLimit.setSingleShot(true);
    m_timeLimit.setInterval(timeLimit);
    connect(&m_timeLimit, &QTimer::timeout, this,
            [this] { fail(QStringLiteral("the time limit is over"), ExitStatus::TimeLimit); });
    m_rig.module().addWatcher(&m_frames);
    connect(&m_rig, &Rig::ticked, this, &Session::play);
    connect(&m_rig, &Rig::requestReceived, this, &Session::play);
    connect(&m_rig, &Rig::complained, this, [this](const QString& text) {
        fail(QStringLiteral("the controller complained: ") + text, ExitStatus::Complaint);
    });
    connect(&m_rig.application(), &Application::ended, this, &Session::applicationEnded);
}

Session::~Session() {
    m_rig.module().removeWatcher(&m_frames);
}

void Session::start() {
    m_started = true;
    m_rig.pictures().forgetFailed(failedPictureName(QStringLiteral("*")));
    m_timeLimit.start();
    play();
}

void Session::play() {
    while (m_started && !isOver()) {
        if (m_current == m_statements.size()) {
            endScript();
            return;
        }
        m_firstCall = !m_entered;
        if (m_firstCall) {
            enterStatement();
        }
        if (current().action->play(*this) == script::Progress::Waiting) {
            checkLimit();
            return;
        }
        leaveStatement();
    }
}

void Session::enterStatement() {
    m_entered = true;
    m_sinceEntry.start();
    m_rig.note(TraceEvent::ScriptLine, current().text);
    if (m_verbose) {
        std::printf("%s:%d: %s\n", qUtf8Printable(m_name), current().line,
                    qUtf8Printable(current().text));
        std::fflush(stdout);
    }
}

void Session::leaveStatement() {
    ++m_current;
    m_entered = false;
}

void Session::checkLimit() {
    if (!isOver() && current().action->takesLimit() &&
        m_sinceEntry.hasExpired(current().limit.count())) {
        const QString instead = current().action->instead(*this);
        fail(QStringLiteral("not within %1 ms").arg(current().limit.count()) +
             (instead.isEmpty() ? QString() : QStringLiteral("; ") + instead));
    }
}

QString Session::progress() const {
    if (isOver() || m_current >= m_statements.size()) {
        return QStringLiteral("%1 is over").arg(m_name);
    }
    return QStringLiteral("%1:%2: %3").arg(m_name).arg(current().line).arg(current().text);
}

void Session::endScript() {
    if (m_pictureFailures.isEmpty()) {
        end(ExitStatus::Success, {});
    } else {
        end(ExitStatus::PictureDiffers,
            QStringLiteral("%1: pictures that are not as stored: %2")
                .arg(m_name, m_pictureFailures.join(QStringLiteral(", "))));
    }
}

QString Session::atCurrentLine(const QString& what) const {
    if (m_current == m_statements.size()) {
        return QStringLiteral("%1: at its end: %2").arg(m_name, what);
    }
    return QStringLiteral("%1:%2: %3: %4")
        .arg(m_name)
        .arg(current().line)
        .arg(current().text, what);
}

void Session::fail(const QString& why, ExitStatus status) {
    fail(why, status, toImage(m_rig.module().picture()));
}

void Session::fail(const QString& why, ExitStatus status, const QImage& picture) {
    if (!isOver()) {
        end(status, atCurrentLine(why) + keepFailedPicture(picture));
    }
}

QString Session::failedPictureName(const QString& line) const {
    return QFileInfo(m_name).completeBaseName() + QStringLiteral("-line-") + line;
}

// A remark where it is.
QString Session::keepFailedPicture(const QImage& picture) const {
    const bool atEnd = m_current == m_statements.size();
    const QString line = atEnd ? QStringLiteral("end") : QString::number(current().line);
    const PictureStore::Outcome outcome =
        m_rig.pictures().takeFailed(failedPictureName(line), picture);
    return outcome.result == PictureStore::Result::Kept
               ? QStringLiteral("; what the panel showed is in ") + outcome.text
               : QStringLiteral("; ") + outcome.text;
}

void Session::end(ExitStatus status, const QString& message) {
    if (!m_over) {
        m_over = true;
        emit ended(status, message);
    }
}

void Session::playFrames() {
    std::vector<script::FrameStepPtr> steps;
    for (std::size_t i = m_current; i < m_statements.size(); ++i) {
        auto step = std::dynamic_pointer_cast<const script::FrameStep>(m_statements[i].action);
        if (!step) {
            break;
        }
        steps.push_back(std::move(step));
    }
    m_firstFrameStatement = m_current;
    m_framesEnd = m_current + steps.size();
    m_rig.module().locked([this, &steps](const controller::Controller& controller) {
        m_frames.start(std::move(steps), controller);
    });
}

void Session::frameStepEnded(const FrameSequence::Event& event) {
    if (isOver()) {
        return;
    }
    m_current = m_firstFrameStatement + event.step;
    if (!event.outcome.failure.isEmpty()) {
        fail(event.outcome.failure, ExitStatus::NotMet, event.failedPicture);
        return;
    }
    if (event.outcome.then) {
        event.outcome.then(*this);
    }
    leaveStatement();
    if (m_current < m_framesEnd) {
        enterStatement();
    } else {
        play();
    }
}

void Session::keepPicture(const QString& name, const QImage& image,
                          const std::vector<PanelText>& texts) {
    const PictureStore::Outcome outcome = m_rig.pictures().take(name, image, texts);
    switch (outcome.result) {
    case PictureStore::Result::NotWritten:
        fail(outcome.text, ExitStatus::FileNotWritten);
        break;
    case PictureStore::Result::Different:
    case PictureStore::Result::Missing:
    case PictureStore::Result::Unreadable:
        std::fprintf(stderr, "panelsim: %s\n", qUtf8Printable(atCurrentLine(outcome.text)));
        m_pictureFailures += name;
        break;
    case PictureStore::Result::Kept:
    case PictureStore::Result::Equal:
    case PictureStore::Result::Renewed:
        break;
    }
}

void Session::applicationEnded() {
    const ProcessEnd end = *m_rig.application().lastEnd();
    const script::WaitExit* ahead = exitAhead();
    if (ahead == nullptr || !ahead->isMetBy(end)) {
        fail(QStringLiteral("the application ended with %1").arg(end.text()),
             ExitStatus::ApplicationExited);
        return;
    }
    play();
}

// The end that the script awaits of the application that is running now.
const script::WaitExit* Session::exitAhead() const {
    for (std::size_t i = m_current; i < m_statements.size(); ++i) {
        const script::Action* action = m_statements[i].action.get();
        if (dynamic_cast<const script::ApplicationSwitch*>(action) != nullptr) {
            return nullptr;
        }
        if (const auto* wait = dynamic_cast<const script::WaitExit*>(action)) {
            return wait;
        }
    }
    return nullptr;
}

} // namespace panel
