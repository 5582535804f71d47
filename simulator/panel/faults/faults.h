#pragma once

#include "complaints.h"
#include "displaymodule.h"
#include "faultorder.h"
#include "faultywires.h"
#include "measurementserver.h"
#include "strikes.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <map>

namespace panel {

// Breaks the virtual instrument on demand, and mends it. To be used from one thread.
class Faults : public QObject {
    Q_OBJECT

public:
    // What can be broken besides the display module and its wires.
    struct Doors {
        // Runs its argument on the server, on that one's thread, and returns when it is done.
        std::function<void(const std::function<void(server::MeasurementServer&)>&)> server;
        std::function<void(bool on)> switchServer;
        std::function<void(bool forbidden)> forbidPins;
        // Called when a fault strikes first, on whichever thread; may be empty.
        std::function<void(const QString&)> struck = {};
    };

    Faults(DisplayModule& module, Complaints& complaints, Doors doors);

    // What the board's wires must lead to.
    FaultyWires& wires() { return m_wires; }

    // A fault that is on already is begun anew.
    void begin(const FaultOrder& order);
    void end(const QString& name); // does nothing when it is not on
    void endAll();

    // The names of those that are on; not of those that strike once, and have.
    QStringList active() const;
    // How often a fault has struck since it was begun last.
    int strikes(const QString& name) const { return m_strikes.count(name); }

signals:
    void changed(); // active()

private:
    void breakNow(const FaultOrder& order);
    void breakController(const FaultOrder& order);
    void brownOut(const FaultOrder& order);
    void mend(const FaultOrder& order);

    DisplayModule& m_module;
    Complaints& m_complaints;
    const Doors m_doors;
    Strikes m_strikes;
    FaultyWires m_wires;
    std::map<QString, FaultOrder> m_active;
    unsigned m_begun = 0;
    std::map<QString, unsigned> m_turns; // which beginning of a fault is the last
};

} // namespace panel
