#include "panelwindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QLabel>
#include <QLayout>
#include <QMenuBar>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

namespace panel {

namespace {

constexpr int refreshMs = 16;
constexpr int messageMs = 5000;
constexpr int bezelWidth = 12;
constexpr QRgb bezelColour = 0xFF202428;

QString keyLine() {
    QStringList entries;
    for (const KeyBinding& binding : keyBindings) {
        entries +=
            QStringLiteral("<b>%1</b>&nbsp;%2")
                .arg(QString::fromLatin1(binding.key),
                     QString::fromLatin1(binding.text).replace(' ', QStringLiteral("&nbsp;")));
    }
    return entries.join(QStringLiteral(" &nbsp; "));
}

// Around the panel, so that its edge shows.
QWidget* inBezel(QWidget* panel) {
    auto* bezel = new QWidget;
    bezel->setAutoFillBackground(true);
    bezel->setPalette(QPalette(QColor(bezelColour)));
    auto* layout = new QVBoxLayout(bezel);
    layout->setContentsMargins(bezelWidth, bezelWidth, bezelWidth, bezelWidth);
    layout->addWidget(panel);
    return bezel;
}

} // namespace

PanelWindow::PanelWindow(Rig& rig, int zoom)
    : m_rig(rig), m_view(new PanelView), m_frameRate(new QLabel), m_server(new QLabel),
      m_application(new QLabel) {
    setWindowTitle(tr("Virtual instrument"));
    auto* keys = new QLabel(keyLine());
    keys->setWordWrap(true);
    auto* centre = new QWidget;
    auto* layout = new QVBoxLayout(centre);
    layout->addWidget(inBezel(m_view));
    layout->addWidget(keys);
    setCentralWidget(centre);
    QMainWindow::layout()->setSizeConstraint(QLayout::SetFixedSize); // follow the zoom
    statusBar()->addWidget(m_application);
    statusBar()->addWidget(m_server);
    statusBar()->addPermanentWidget(m_frameRate);
    statusBar()->setSizeGripEnabled(false);
    addActions();
    m_view->setZoom(zoom);

    connect(m_view, &PanelView::touched, this,
            [this](QPoint pixel) { m_rig.module().touch(pixel.x(), pixel.y()); });
    connect(m_view, &PanelView::released, this, [this] { m_rig.module().release(); });
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &PanelWindow::refresh);
    timer->start(refreshMs);
}

void PanelWindow::closeEvent(QCloseEvent* event) {
    QMainWindow::closeEvent(event);
    emit closed();
}

void PanelWindow::addActions() {
    QMenu* menu = menuBar()->addMenu(tr("&Instrument"));
    for (const KeyBinding& binding : keyBindings) {
        QString text = QString::fromLatin1(binding.text);
        text[0] = text[0].toUpper();
        QAction* action = menu->addAction(text);
        action->setShortcut(QKeySequence(QString::fromLatin1(binding.key)));
        connect(action, &QAction::triggered, this,
                [this, what = binding.action] { perform(what); });
    }
}

void PanelWindow::perform(KeyAction action) {
    switch (action) {
    case KeyAction::Zoom1:
        return m_view->setZoom(1);
    case KeyAction::Zoom2:
        return m_view->setZoom(2);
    case KeyAction::Zoom3:
        return m_view->setZoom(3);
    case KeyAction::Zoom4:
        return m_view->setZoom(4);
    case KeyAction::Screenshot:
        return takeScreenshot();
    case KeyAction::RestartApplication:
        return restartApplication();
    case KeyAction::KillApplication:
        return m_rig.application().kill();
    case KeyAction::ToggleServer:
        return toggleServer();
    case KeyAction::Quit:
        close();
        return;
    }
}

void PanelWindow::takeScreenshot() {
    const PictureStore::Outcome outcome =
        m_rig.pictures().takeNumbered(toImage(m_rig.module().picture()));
    statusBar()->showMessage(outcome.text, messageMs);
}

void PanelWindow::restartApplication() {
    if (!m_rig.application().start()) {
        statusBar()->showMessage(m_rig.application().error(), messageMs);
    }
}

void PanelWindow::toggleServer() {
    if (m_rig.server().isListening()) {
        m_rig.server().stop();
    } else if (!m_rig.server().start()) {
        statusBar()->showMessage(m_rig.server().error(), messageMs);
    }
}

void PanelWindow::refresh() {
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
