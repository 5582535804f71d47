#include "faults.h"

#include <QTimer>

namespace panel {

namespace {

constexpr auto coprocessorComplaint = "coprocessor fault: on demand";
constexpr std::chrono::milliseconds usualStart{20};

} // namespace

Faults::Faults(DisplayModule& module, Complaints& complaints, Doors doors)
    : m_module(module), m_complaints(complaints), m_doors(std::move(doors)),
      m_strikes(m_doors.struck), m_wires(module, m_strikes) {
    m_doors.server([this](server::MeasurementServer& server) {
        connect(&server, &server::MeasurementServer::faultStruck, this,
                [this](const QString& name, const QByteArray& request) {
                    m_strikes.add(
                        name, QStringLiteral("the request \"%1\"").arg(QString::fromUtf8(request)));
                });
    });
}

void Faults::begin(const FaultOrder& order) {
    end(order.name);
    m_strikes.begin(order.name, order.text);
    const unsigned turn = ++m_begun;
    m_turns[order.name] = turn;
    m_active[order.name] = order;
    emit changed();
    if (order.after.count() == 0) {
        breakNow(order);
        return;
    }
    QTimer::singleShot(order.after, Qt::PreciseTimer, this, [this, order, turn] {
        if (m_turns[order.name] == turn && m_active.count(order.name) != 0) {
            breakNow(order);
        }
    });
}

void Faults::end(const QString& name) {
    const auto fault = m_active.find(name);
    if (fault == m_active.end()) {
        return;
    }
    const FaultOrder order = fault->second;
    m_active.erase(fault);
    mend(order);
    m_strikes.end(name);
    emit changed();
}

void Faults::endAll() {
    const auto active = m_active;
    for (const auto& [name, order] : active) {
        end(name);
    }
}

QStringList Faults::active() const {
    QStringList names;
    for (const auto& [name, order] : m_active) {
        if (!order.endsByItself() || m_strikes.count(name) == 0) {
            names += name;
        }
    }
    return names;
}

void Faults::breakNow(const FaultOrder& order) {
    switch (order.breaks) {
    case Breaks::BusDead:
    case Breaks::BusFailsAt:
    case Breaks::BusFailsRandomly:
    case Breaks::BusCorrupts:
    case Breaks::BusSlow:
    case Breaks::PinsFail:
        m_wires.add(order);
        break;
    case Breaks::PinsForbidden:
        m_doors.forbidPins(true);
        m_strikes.add(order.name, QStringLiteral("for programs started from now on"));
        break;
    case Breaks::ServerOff:
        m_doors.switchServer(false);
        m_strikes.add(order.name, QStringLiteral("the server is gone"));
        break;
    case Breaks::Server:
        m_doors.server([&order](server::MeasurementServer& server) {
            server.addFault(order.name, order.rule);
        });
        break;
    default:
        breakController(order);
        break;
    }
}

void Faults::breakController(const FaultOrder& order) {
    QString what = QStringLiteral("from now on");
    switch (order.breaks) {
    case Breaks::CoprocessorFault:
        m_complaints.allow(QString::fromLatin1(coprocessorComplaint));
        m_module.breakCoprocessor();
        what = QStringLiteral("the coprocessor stops");
        break;
    case Breaks::CoprocessorStalled:
        m_module.setCoprocessorStalled(true);
        break;
    case Breaks::ControllerSlowBoot:
        m_module.setStartTime(order.time);
        what = QStringLiteral("from the next start on");
        break;
    case Breaks::ControllerBrownOut:
        brownOut(order);
        what = QStringLiteral("the supply fails");
        break;
    case Breaks::ControllerWrongId:
        m_module.setIdentity(order.word);
        break;
    case Breaks::ControllerSilent:
        m_module.setAnswering(false);
        break;
    default:
        break;
    }
    m_strikes.add(order.name, what);
}

// The supply is down for a moment, which the chip takes as it takes the power-down pin.
void Faults::brownOut(const FaultOrder& order) {
    m_module.powerDown(false);
    QTimer::singleShot(order.time, Qt::PreciseTimer, this, [this] { m_module.powerDown(true); });
}

void Faults::mend(const FaultOrder& order) {
    switch (order.breaks) {
    case Breaks::PinsForbidden:
        m_doors.forbidPins(false);
        break;
    case Breaks::CoprocessorStalled:
        m_module.setCoprocessorStalled(false);
        break;
    case Breaks::ControllerSlowBoot:
        m_module.setStartTime(usualStart);
        break;
    case Breaks::ControllerWrongId:
        m_module.setOwnIdentity();
        break;
    case Breaks::ControllerSilent:
        m_module.setAnswering(true);
        break;
    case Breaks::ServerOff:
        m_doors.switchServer(true);
        break;
    case Breaks::Server:
        m_doors.server(
            [&order](server::MeasurementServer& server) { server.clearFault(order.name); });
        break;
    case Breaks::CoprocessorFault:
    case Breaks::ControllerBrownOut:
        break; // done is done
    default:
        m_wires.remove(order.name);
        break;
    }
}

} // namespace panel
