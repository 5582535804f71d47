#pragma once

#include "inspector.h"
#include "keys.h"

#include <QDockWidget>
#include <QPoint>
#include <QTimer>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace panel {

// The inspector beside the panel: what has drawn the pixel under the mouse, the list by command,
// registers, memory, and the panel's time. It looks only while it is shown.
class InspectDock : public QDockWidget {
    Q_OBJECT

public:
    explicit InspectDock(Inspector& inspector, QWidget* parent = nullptr);

    // The mouse is over this pixel of the panel. A pixel that is held stays.
    void hover(QPoint pixel);
    void perform(KeyAction action);
    // Shows the present state; by itself it does so some times a second.
    void refresh();

signals:
    // The pixels of the panel that what is selected reaches; empty: nothing is.
    void outlined(QRect pixels);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* makeTimeRow();
    QWidget* makePixelTab();
    QWidget* makeListTab();
    QWidget* makeRegisterTab();
    QWidget* makeMemoryTab();
    void showPixel();
    void showList();
    void showRegisters();
    void showMemory();
    void showTime();
    void filterList();
    void changeSpeed(int steps);
    void outlineSelected(const QTreeWidgetItem* item);

    Inspector& m_inspector;
    QTimer m_timer;
    QPoint m_pixel{-1, -1};
    std::vector<WordReport> m_words; // as the list shows them
    QString m_pixelText;

    QPushButton* m_pause = nullptr;
    QPushButton* m_hold = nullptr;
    QComboBox* m_speed = nullptr;
    QLabel* m_doing = nullptr; // the command taken last, while paused
    QTabWidget* m_tabs = nullptr;
    QLabel* m_pixelLabel = nullptr;
    QTreeWidget* m_steps = nullptr;
    QLineEdit* m_listSearch = nullptr;
    QTreeWidget* m_list = nullptr;
    QLineEdit* m_registerSearch = nullptr;
    QTreeWidget* m_registers = nullptr;
    QLineEdit* m_place = nullptr;
    QPlainTextEdit* m_memory = nullptr;
};

} // namespace panel
