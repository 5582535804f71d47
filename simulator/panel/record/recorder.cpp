#include "recorder.h"

#include <algorithm>

namespace panel {

namespace {

constexpr int pollsThatGoOn = 2;
constexpr int steadyMs = 150;
constexpr int readsStopMs = 500;

bool isNumber(const QString& text) {
    bool ok = false;
    text.toDouble(&ok);
    return ok;
}

// "50 mV", but not "Trigger level [0]".
bool isValueWithUnit(const QString& text) {
    return !isNumber(text) && isNumber(text.section(' ', 0, 0));
}

bool isPoll(const QString& request) {
    return request == QStringLiteral("DATA?");
}

} // namespace

Recorder::Recorder(Rig& rig) : m_rig(rig) {
    connect(&rig.finger(), &UserFinger::pressed, this, &Recorder::pressed);
    connect(&rig.finger(), &UserFinger::moved, this, &Recorder::moved);
    connect(&rig.finger(), &UserFinger::lifted, this, &Recorder::lifted);
    connect(&rig.server(), &ServerThread::requestReceived, this, &Recorder::requested);
    connect(&rig, &Rig::ticked, this, &Recorder::tickRecording);
    connect(&rig.application(), &Application::ended, this, &Recorder::applicationEnded);
    rig.module().addWatcher(this);
}

Recorder::~Recorder() {
    m_rig.module().removeWatcher(this);
    stop();
}

bool Recorder::start(const QString& path, bool fromStart) {
    stop();
    if (!m_writer.open(path)) {
        return false;
    }
    m_gesture = {};
    m_requests.clear();
    m_textsBefore.clear();
    m_writer.comment(QStringLiteral("Recorded; panelsim --script FILE plays it."));
    if (!fromStart) {
        m_writer.comment(QStringLiteral("The application was running already: what leads to the "
                                        "following is to be added here."));
    }
    look();
    return true;
}

bool Recorder::stop() {
    if (!isRecording()) {
        return true;
    }
    if (m_gesture.isDown()) {
        lifted();
    }
    beginAction();
    return m_writer.close();
}

QString Recorder::error() const {
    return QStringLiteral("cannot write the recording %1: %2")
        .arg(m_writer.path(), m_writer.error());
}

void Recorder::touchTagRead(int tag) {
    const std::lock_guard lock(m_readsMutex);
    m_reads.push_back(tag);
}

void Recorder::takeReads() {
    std::vector<int> reads;
    {
        const std::lock_guard lock(m_readsMutex);
        reads.swap(m_reads);
    }
    for (const int tag : reads) {
        m_gesture.tagRead(tag);
        m_sinceRead.start();
    }
}

void Recorder::tickRecording() {
    takeReads();
    if (isRecording() && m_rig.module().counts().swaps != m_swapsSeen) {
        look();
    }
}

void Recorder::look() {
    m_swapsSeen = m_rig.module().counts().swaps;
    const QStringList before = numbers();
    m_texts = m_rig.module().locked(textsOn);
    if (numbers() != before) {
        m_numbersStood = m_sinceNumbers.isValid() ? m_sinceNumbers.elapsed() : 0;
        m_sinceNumbers.start();
    }
}

QStringList Recorder::numbers() const {
    QStringList numbers;
    for (const PanelText& text : m_texts) {
        if (isNumber(text.text)) {
            numbers += text.text;
        }
    }
    return numbers;
}

bool Recorder::numbersAreSteady() const {
    return m_numbersStood >= steadyMs ||
           (m_sinceNumbers.isValid() && m_sinceNumbers.hasExpired(steadyMs));
}

void Recorder::requested(const QString& request) {
    if (isRecording()) {
        m_requests += request;
    }
}

void Recorder::pressed(QPoint pixel) {
    if (!isRecording()) {
        return;
    }
    takeReads();
    beginAction();
    m_rig.module().locked([this, pixel](const controller::Controller& controller) {
        m_gesture.press(controller, pixel);
    });
}

void Recorder::moved(QPoint pixel) {
    takeReads();
    m_rig.module().locked([this, pixel](const controller::Controller& controller) {
        m_gesture.move(controller, pixel);
    });
}

void Recorder::lifted() {
    takeReads();
    if (isRecording() && m_gesture.isDown()) {
        writeLines(m_gesture.release());
    }
}

void Recorder::screenshot(const QString& name) {
    if (!isRecording()) {
        return;
    }
    takeReads();
    writeLines(m_gesture.takeLines());
    const bool waitsForNumber = beginAction();
    if (!waitsForNumber && m_sinceRead.isValid() && !m_sinceRead.hasExpired(readsStopMs)) {
        m_writer.line(QStringLiteral("wait reads 2"));
    }
    m_writer.line(QStringLiteral("screenshot"), {name});
}

void Recorder::command(const QString& line) {
    if (!isRecording()) {
        return;
    }
    takeReads();
    writeLines(m_gesture.takeLines());
    beginAction();
    m_writer.line(line);
}

// The panel goes on showing what it does until the application has come up.
void Recorder::startApplication() {
    command(QStringLiteral("application start"));
    const auto title = std::find_if(m_textsBefore.begin(), m_textsBefore.end(),
                                    [](const QString& text) { return !isNumber(text); });
    if (isRecording() && title != m_textsBefore.end()) {
        m_writer.line(QStringLiteral("wait no-text"), {ScriptWriter::word(*title)});
    }
    m_textsBefore.clear();
}

void Recorder::applicationEnded() {
    const ProcessEnd end = *m_rig.application().lastEnd();
    command((end.bySignal ? QStringLiteral("wait exit signal %1") : QStringLiteral("wait exit %1"))
                .arg(end.code));
}

void Recorder::writeLines(const QStringList& lines) {
    for (const QString& line : lines) {
        m_writer.line(line);
    }
}

// Waits for what has come since the last action. Whether for a number, at the end: then what
// follows is done with the frame that shows it.
bool Recorder::beginAction() {
    look();
    writeRequestWaits();
    const bool waitsForNumber = writeTextWaits();
    m_requests.clear();
    m_textsBefore.clear();
    for (const PanelText& text : m_texts) {
        m_textsBefore += text.text;
    }
    return waitsForNumber;
}

// Polls come and go with the time; that they go on is worth a wait.
void Recorder::writeRequestWaits() {
    int polls = 0;
    for (const QString& request : m_requests) {
        polls = isPoll(request) ? polls + 1 : 0;
        if (!isPoll(request)) {
            m_writer.line(QStringLiteral("wait request"), {ScriptWriter::word(request)});
        }
    }
    if (polls >= pollsThatGoOn) {
        m_writer.line(QStringLiteral("wait request DATA?"));
    }
}

bool Recorder::isNew(const PanelText& text) const {
    return !m_textsBefore.contains(text.text);
}

bool Recorder::writeTextWaits() {
    bool hasTitle = false;
    const PanelText* number = nullptr; // of those that change together, one is enough
    QStringList now;
    for (const PanelText& text : m_texts) {
        now += text.text;
        if (!isNew(text)) {
            continue;
        }
        if (isNumber(text.text)) {
            number = number == nullptr ? &text : number;
        } else if (!hasTitle || isValueWithUnit(text.text)) {
            hasTitle = true;
            writeTextWait(text);
        }
    }
    const auto gone =
        std::find_if(m_textsBefore.begin(), m_textsBefore.end(), [&now](const QString& text) {
            return !isNumber(text) && !now.contains(text);
        });
    if (!hasTitle && gone != m_textsBefore.end()) {
        m_writer.line(QStringLiteral("wait no-text"), {ScriptWriter::word(*gone)});
    }
    if (number == nullptr || !numbersAreSteady()) {
        return false;
    }
    writeTextWait(*number);
    return true;
}

// Titles stand where they stand; a value might look like something else on the panel.
void Recorder::writeTextWait(const PanelText& text) {
    QStringList arguments{ScriptWriter::word(text.text)};
    if (isNumber(text.text) || isValueWithUnit(text.text)) {
        arguments += QStringLiteral("at ") + ScriptWriter::pixel(text.box.center());
    }
    m_writer.line(QStringLiteral("wait text"), arguments);
}

} // namespace panel
