#include "faultmenu.h"

#include <QAction>

namespace panel {

FaultMenu::FaultMenu(Faults& faults, QMenu& menu)
    : QObject(&menu), m_faults(faults), m_menu(menu), m_title(menu.title()) {
    menu.setToolTipsVisible(true);
    for (const FaultEntry& entry : faultTable()) {
        QAction* const action = menu.addAction(entry.name);
        action->setObjectName(entry.name);
        action->setToolTip(entry.help);
        action->setCheckable(true);
        connect(action, &QAction::triggered, this,
                [this, name = entry.name](bool on) { choose(name, on); });
    }
    menu.addSeparator();
    QAction* const mend = menu.addAction(tr("Mend all"));
    connect(mend, &QAction::triggered, this, [this] { m_faults.endAll(); });
    connect(&m_faults, &Faults::changed, this, &FaultMenu::showActive);
    connect(&menu, &QMenu::aboutToShow, this, &FaultMenu::showActive);
    showActive();
}

void FaultMenu::choose(const QString& name, bool on) {
    if (!on) {
        m_faults.end(name);
        return;
    }
    QString error;
    if (const auto order = parseFaultOrder({name}, &error)) {
        m_faults.begin(*order);
    }
    showActive();
}

// In the title, too, so that nobody takes a broken instrument for a mended one.
void FaultMenu::showActive() {
    const QStringList active = m_faults.active();
    for (QAction* action : m_menu.actions()) {
        action->setChecked(active.contains(action->objectName()));
    }
    m_menu.setTitle(active.isEmpty()
                        ? m_title
                        : tr("%1 (on: %2)").arg(m_title, active.join(QStringLiteral(", "))));
}

} // namespace panel
