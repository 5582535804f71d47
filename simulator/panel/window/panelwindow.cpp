#include "panelwindow.h"

#include "faultmenu.h"
#include "inspectdock.h"
#include "messagebar.h"

#include <QAction>
#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>

namespace panel {

namespace {

constexpr int panelRefreshMs = 16;
constexpr int highestZoom = 4;
constexpr int bezelWidth = 12;
constexpr int statusMargin = 2;
constexpr int spacing = 4;
constexpr int usualTitleBar = 32; // as long as there is none to measure
constexpr QRgb bezelColour = 0xFF202428;

QString keyLine() {
    QStringList entries;
    for (const KeyBinding& binding : keyBindings) {
        if (isOfInspector(binding.action)) {
            continue;
        }
        entries +=
            QStringLiteral("<b>%1</b>&nbsp;%2")
                .arg(QString::fromLatin1(binding.key),
                     QString::fromLatin1(binding.text).replace(' ', QStringLiteral("&nbsp;")));
    }
    return entries.join(QStringLiteral("&nbsp;&nbsp; "));
}

const char* titleOf(MenuName name) {
    switch (name) {
    case MenuName::Instrument:
        return "&Instrument";
    case MenuName::Record:
        return "&Record";
    case MenuName::View:
        return "&View";
    case MenuName::Faults:
        return "&Faults";
    }
    return "";
}

std::optional<int> zoomOf(KeyAction action) {
    switch (action) {
    case KeyAction::Zoom1:
        return 1;
    case KeyAction::Zoom2:
        return 2;
    case KeyAction::Zoom3:
        return 3;
    case KeyAction::Zoom4:
        return 4;
    default:
        return {};
    }
}

// A label without text knows no height for a width.
int heightOf(const QWidget& widget, int width) {
    return widget.hasHeightForWidth() ? widget.heightForWidth(width) : widget.sizeHint().height();
}

// Around the panel, so that its edge shows.
QWidget* inBezel(QWidget* panel) {
    auto* bezel = new QWidget;
    bezel->setAutoFillBackground(true);
    bezel->setPalette(QPalette(QColor(bezelColour)));
    auto* layout = new QVBoxLayout(bezel);
    layout->setContentsMargins(bezelWidth, bezelWidth, bezelWidth, bezelWidth);
    layout->addWidget(panel, 0, Qt::AlignCenter);
    return bezel;
}

} // namespace

PanelWindow::PanelWindow(Rig& rig, int zoom)
    : m_rig(rig), m_recorder(rig), m_view(new PanelView), m_messages(new MessageBar),
      m_inspect(new InspectDock(rig.inspector(), this)), m_keys(new QLabel(keyLine())),
      m_frameRate(new QLabel), m_server(new QLabel), m_application(new QLabel), m_wantedZoom(zoom),
      m_largestZoom(highestZoom) {
    setWindowTitle(tr("Virtual instrument"));
    m_keys->setWordWrap(true);
    m_keys->setContentsMargins(sideMargin, 0, sideMargin, 0);
    auto* centre = new QWidget;
    auto* layout = new QVBoxLayout(centre);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    layout->addWidget(inBezel(m_view), 1);
    layout->addWidget(m_messages);
    layout->addWidget(m_keys);
    setCentralWidget(centre);
    statusBar()->addWidget(m_application);
    statusBar()->addWidget(m_server);
    statusBar()->addPermanentWidget(m_frameRate);
    for (QLabel* label : {m_application, m_server, m_frameRate}) {
        label->setContentsMargins(sideMargin, statusMargin, sideMargin, statusMargin);
    }
    addDockWidget(Qt::RightDockWidgetArea, m_inspect);
    m_inspect->hide();
    connect(m_view, &PanelView::hovered, m_inspect, &InspectDock::hover);
    connect(m_inspect, &InspectDock::outlined, m_view, &PanelView::setOutline);
    addMenus();
    addActions();
    new FaultMenu(m_rig.faults(), menu(MenuName::Faults)); // the menu owns it
    fitInto(screen()->availableSize());

    connect(m_messages, &MessageBar::changed, this, &PanelWindow::arrange);
    connect(m_view, &PanelView::touched, this,
            [this](QPoint pixel) { m_rig.finger().touch(pixel); });
    connect(m_view, &PanelView::released, this, [this] { m_rig.finger().release(); });
    connect(&m_rig, &Rig::complaintHeard, m_messages, [this](const QString& text) {
        m_messages->showProblem(tr("The controller complains: %1").arg(text));
    });
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &PanelWindow::refresh);
    timer->start(panelRefreshMs);
}

void PanelWindow::closeEvent(QCloseEvent* event) {
    QMainWindow::closeEvent(event);
    emit closed();
}

void PanelWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    fitInto(screen()->availableSize());
}

void PanelWindow::addMenus() {
    for (const MenuName name :
         {MenuName::Instrument, MenuName::Record, MenuName::View, MenuName::Faults}) {
        m_menus[name] = menuBar()->addMenu(tr(titleOf(name)));
    }
}

QMenu& PanelWindow::menu(MenuName name) {
    return *m_menus.at(name);
}

void PanelWindow::addActions() {
    for (const KeyBinding& binding : keyBindings) {
        QString text = QString::fromLatin1(binding.text);
        text[0] = text[0].toUpper();
        QAction* action = menu(binding.menu).addAction(text);
        action->setShortcut(QKeySequence(QString::fromLatin1(binding.key)));
        connect(action, &QAction::triggered, this,
                [this, what = binding.action] { perform(what); });
        m_actions[binding.action] = action;
    }
}

void PanelWindow::perform(KeyAction action) {
    switch (action) {
    case KeyAction::Zoom1:
    case KeyAction::Zoom2:
    case KeyAction::Zoom3:
    case KeyAction::Zoom4:
        m_wantedZoom = *zoomOf(action);
        return setZoom(m_wantedZoom);
    case KeyAction::Screenshot:
        return takeScreenshot();
    case KeyAction::Record:
        return toggleRecording();
    case KeyAction::RestartApplication:
        return restartApplication();
    case KeyAction::KillApplication:
        m_recorder.command(QStringLiteral("application kill"));
        return m_rig.application().kill();
    case KeyAction::ToggleServer:
        return toggleServer();
    case KeyAction::Inspect:
    case KeyAction::HoldPixel:
    case KeyAction::Pause:
    case KeyAction::StepFrame:
    case KeyAction::StepCommand:
    case KeyAction::Slower:
    case KeyAction::Faster:
        return m_inspect->perform(action);
    case KeyAction::Quit:
        close();
        return;
    }
}

void PanelWindow::fitInto(QSize available) {
    m_largestZoom = highestZoom;
    while (m_largestZoom > 1 && (sizeWith(m_largestZoom).width() > available.width() ||
                                 sizeWith(m_largestZoom).height() > available.height())) {
        --m_largestZoom;
    }
    for (const auto& [what, action] : m_actions) {
        action->setEnabled(zoomOf(what).value_or(1) <= m_largestZoom);
    }
    const int zoom = std::min(m_wantedZoom, m_largestZoom);
    // The menus tell the keys, too.
    const QSize size = sizeWith(zoom);
    m_keys->setVisible(size.height() + heightOf(*m_keys, size.width()) <= available.height());
    setZoom(zoom);
}

// Of the window with its frame, without what stands beside the panel and without the keys.
QSize PanelWindow::sizeWith(int zoom) const {
    const int width = panelSize.width() * zoom + 2 * bezelWidth;
    const int around = menuBar()->sizeHint().height() + statusBar()->sizeHint().height() +
                       heightOf(*m_messages, width) + 2 * bezelWidth + 2 * spacing;
    const int frame = isVisible() ? frameGeometry().height() - height() : 0;
    return {width, panelSize.height() * zoom + around + std::max(frame, usualTitleBar)};
}

void PanelWindow::setZoom(int zoom) {
    m_view->setZoom(zoom);
    arrange();
    // Not when somebody has made it larger on purpose, or the desktop has.
    if (!isMaximized() && !isFullScreen()) {
        for (QLayout* inner :
             {m_view->parentWidget()->layout(), centralWidget()->layout(), QMainWindow::layout()}) {
            inner->activate(); // or the last zoom's size would still be the smallest
        }
        resize(sizeHint());
    }
}

// Gives the texts below the panel the height that they need for the panel's width: a main window
// does not ask for it.
void PanelWindow::arrange() {
    const int width = m_view->width() + 2 * bezelWidth;
    m_messages->setMinimumHeight(heightOf(*m_messages, width));
    m_keys->setMinimumHeight(heightOf(*m_keys, width));
}

void PanelWindow::takeScreenshot() {
    const PictureStore::Outcome outcome =
        m_rig.pictures().takeNumbered(toImage(m_rig.module().picture()));
    if (outcome.result == PictureStore::Result::NotWritten) {
        m_messages->showProblem(outcome.text);
    } else {
        m_messages->showNotice(tr("Screenshot: %1").arg(outcome.text));
        m_recorder.screenshot(QFileInfo(outcome.text).completeBaseName());
    }
}

void PanelWindow::toggleRecording() {
    if (!m_recorder.isRecording()) {
        return beginRecording();
    }
    if (m_recorder.stop()) {
        m_messages->showNotice(tr("Recorded: %1").arg(m_recorder.path()));
    } else {
        m_messages->showProblem(m_recorder.error());
    }
}

void PanelWindow::beginRecording() {
    const QString path =
        m_rig.pictures().freeFile(QStringLiteral("recording"), QStringLiteral(".session"));
    if (m_recorder.start(path, false)) {
        m_messages->showNotice(tr("Recording: %1").arg(path));
    } else {
        m_messages->showProblem(m_recorder.error());
    }
}

void PanelWindow::restartApplication() {
    m_recorder.startApplication();
    if (!m_rig.application().start()) {
        m_messages->showProblem(m_rig.application().error());
    }
}

void PanelWindow::toggleServer() {
    m_recorder.command(m_rig.server().isListening() ? QStringLiteral("server stop")
                                                    : QStringLiteral("server start"));
    if (m_rig.server().isListening()) {
        m_rig.server().stop();
    } else if (!m_rig.server().start()) {
        m_messages->showProblem(m_rig.server().error());
    }
}

void PanelWindow::refresh() {
    if (m_progress) {
        m_messages->setProgress(m_progress());
    }
    const controller::PanelState state = m_rig.module().panel();
    showState(state);
    const std::uint32_t frames = m_rig.module().counts().frames;
    if (frames != m_framesShown || !state.scanning) {
        m_framesShown = frames;
        m_view->show(toImage(m_rig.module().picture()), state);
    }
}

void PanelWindow::showState(const controller::PanelState& state) {
    m_frameRate->setText(tr("%1 frames a second").arg(state.framesPerSecond, 0, 'f', 1));
    m_server->setText(serverState());
    m_application->setText(applicationState());
}

QString PanelWindow::serverState() const {
    if (!m_rig.server().isListening()) {
        return tr("Server: off");
    }
    return m_rig.server().connections() > 0 ? tr("Server: connected") : tr("Server: listening");
}

QString PanelWindow::applicationState() const {
    const Application& application = m_rig.application();
    if (application.isRunning()) {
        return tr("Application: running");
    }
    const auto end = application.lastEnd();
    return end ? tr("Application: ended with %1").arg(end->text()) : tr("Application: not running");
}

} // namespace panel
