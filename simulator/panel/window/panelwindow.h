#pragma once

#include "keys.h"
#include "panelview.h"
#include "rig.h"

#include <QMainWindow>

class QLabel;
class QMenu;

namespace panel {

// The instrument's front on the screen: the panel, what state it is in, and keys for the common
// actions.
class PanelWindow : public QMainWindow {
    Q_OBJECT

public:
    PanelWindow(Rig& rig, int zoom);

signals:
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void addActions();
    void perform(KeyAction action);
    void takeScreenshot();
    void restartApplication();
    void toggleServer();
    void refresh();
    void showState(const controller::PanelState& state);
    QString serverState() const;
    QString applicationState() const;

    Rig& m_rig;
    PanelView* const m_view;
    QLabel* const m_frameRate;
    QLabel* const m_server;
    QLabel* const m_application;
    std::uint32_t m_framesShown = 0;
};

} // namespace panel
