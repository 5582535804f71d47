#pragma once

#include "faults.h"

#include <QMenu>

namespace panel {

// Every fault of the table, with a mark at those that are on. Choosing one turns it on, as it is
// without arguments, or off.
class FaultMenu : public QObject {
    Q_OBJECT

public:
    // Fills `menu`, and belongs to it.
    FaultMenu(Faults& faults, QMenu& menu);

private:
    void choose(const QString& name, bool on);
    void showActive();

    Faults& m_faults;
    QMenu& m_menu;
    const QString m_title;
};

} // namespace panel
