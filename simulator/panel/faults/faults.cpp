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

void Faults::begin(const FaultSpec& spec) {
    end(spec.name);
    m_strikes.begin(spec.name, spec.text);
    const unsigned turn = ++m_begun;
    m_turns[spec.name] = turn;
    m_active[spec.name] = spec;
    emit changed();
    if (spec.after.count() == 0) {
        breakNow(spec);
        return;
    }
    QTimer::singleShot(spec.after, Qt::PreciseTimer, this, [this, spec, turn] {
        if (m_turns[spec.name] == turn && m_active.count(spec.name) != 0) {
            breakNow(spec);
        }
    });
}

void Faults::end(const QString& name) {
    const auto fault = m_active.find(name);
    if (fault == m_active.end()) {
        return;
    }
    const FaultSpec spec = fault->second;
    m_active.erase(fault);
    mend(spec);
    m_strikes.end(name);
    emit changed();
}

void Faults::endAll() {
    const auto active = m_active;
    for (const auto& [name, spec] : active) {
        end(name);
    }
}

QStringList Faults::active() const {
    QStringList names;
    for (const auto& [name, spec] : m_active) {
        if (!spec.endsByItself() || m_strikes.count(name) == 0) {
            names += name;
        }
    }
    return names;
}

void Faults::breakNow(const FaultSpec& spec) {
    switch (spec.breaks) {
    case Breaks::BusDead:
    case Breaks::BusFailsAt:
    case Breaks::BusFailsRandomly:
    case Breaks::BusCorrupts:
    case Breaks::BusSlow:
    case Breaks::PinsFail:
        m_wires.add(spec);
        break;
    case Breaks::PinsForbidden:
        m_doors.forbidPins(true);
        m_strikes.add(spec.name, QStringLiteral("for programs started from now on"));
        break;
    case Breaks::ServerOff:
        m_doors.switchServer(false);
        m_strikes.add(spec.name, QStringLiteral("the server is gone"));
        break;
    case Breaks::Server:
        m_doors.server(
            [&spec](server::MeasurementServer& server) { server.addFault(spec.name, spec.rule); });
        break;
    default:
        breakController(spec);
        break;
    }
}

void Faults::breakController(const FaultSpec& spec) {
    QString what = QStringLiteral("from now on");
    switch (spec.breaks) {
    case Breaks::CoprocessorFault:
        m_complaints.allow(QString::fromLatin1(coprocessorComplaint));
        m_module.breakCoprocessor();
        what = QStringLiteral("the coprocessor stops");
        break;
    case Breaks::CoprocessorStalled:
        m_module.setCoprocessorStalled(true);
        break;
    case Breaks::ControllerSlowBoot:
        m_module.setStartTime(spec.time);
        what = QStringLiteral("from the next start on");
        break;
    case Breaks::ControllerBrownOut:
        brownOut(spec);
        what = QStringLiteral("the supply fails");
        break;
    case Breaks::ControllerWrongId:
        m_module.setIdentity(spec.word);
        break;
    case Breaks::ControllerSilent:
        m_module.setAnswering(false);
        break;
    default:
        break;
    }
    m_strikes.add(spec.name, what);
}

// The supply is down for a moment, which the chip takes as it takes the power-down pin.
void Faults::brownOut(const FaultSpec& spec) {
    m_module.powerDown(false);
    QTimer::singleShot(spec.time, Qt::PreciseTimer, this, [this] { m_module.powerDown(true); });
}

void Faults::mend(const FaultSpec& spec) {
    switch (spec.breaks) {
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
            [&spec](server::MeasurementServer& server) { server.clearFault(spec.name); });
        break;
    case Breaks::CoprocessorFault:
    case Breaks::ControllerBrownOut:
        break; // done is done
    default:
        m_wires.remove(spec.name);
        break;
    }
}

} // namespace panel
