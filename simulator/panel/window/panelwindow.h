#pragma once

#include "keys.h"
#include "panelview.h"
#include "recorder.h"
#include "rig.h"

#include <QMainWindow>

#include <functional>
#include <map>

class QLabel;

namespace panel {

class InspectDock;
class MessageBar;

// The instrument's front on the screen: the panel, what state it is in, what there is to say, and
// keys for the common actions. Whoever adds to it hangs actions into its menus and docks beside it.
class PanelWindow : public QMainWindow {
    Q_OBJECT

public:
    PanelWindow(Rig& rig, int zoom);

    PanelView& view() { return *m_view; }
    MessageBar& messages() { return *m_messages; }
    Recorder& recorder() { return m_recorder; }
    QMenu& menu(MenuName name);

    // How far a script is, as `progress` says whenever the window is drawn anew.
    void followScript(std::function<QString()> progress) { m_progress = std::move(progress); }

    // From now on the panel is shown no larger than what fits into so much of a screen. The window
    // does so by itself with the screen on which it appears.
    void fitInto(QSize available);

signals:
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void addMenus();
    void addActions();
    void perform(KeyAction action);
    void setZoom(int zoom);
    QSize sizeWith(int zoom) const;
    void arrange();
    void takeScreenshot();
    void toggleRecording();
    void beginRecording();
    void restartApplication();
    void toggleServer();
    void refresh();
    void showState(const controller::PanelState& state);
    QString serverState() const;
    QString applicationState() const;

    Rig& m_rig;
    Recorder m_recorder;
    PanelView* const m_view;
    MessageBar* const m_messages;
    InspectDock* const m_inspect;
    QLabel* const m_keys;
    QLabel* const m_frameRate;
    QLabel* const m_server;
    QLabel* const m_application;
    std::map<MenuName, QMenu*> m_menus;
    std::map<KeyAction, QAction*> m_actions;
    int m_wantedZoom;
    int m_largestZoom;
    std::uint32_t m_framesShown = 0;
    std::function<QString()> m_progress;
};

} // namespace panel
