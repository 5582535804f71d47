#include "rig.h"

#include "bustrace.h"
#include "kernelboard.h"
#include "vcdtrace.h"
#include "virtualboard.h"

#include <cstdio>

namespace panel {

namespace {

constexpr int tickMs = 5; // well within a frame, so that frames come when they are due

} // namespace

Rig::Rig(const Settings& settings)
    : m_settings(settings),
      m_complaints(
          [this](const QString& text) {
              QMetaObject::invokeMethod(
                  this, [this, text] { emit complained(text); }, Qt::QueuedConnection);
          },
          [this](const QString& text) {
              QMetaObject::invokeMethod(
                  this, [this, text] { emit complaintHeard(text); }, Qt::QueuedConnection);
          }),
      m_module(settings.generation), m_finger(m_module),
      m_server(settings.seed, settings.realServer), m_faults(m_module, m_complaints, faultDoors()),
      m_pictures(settings.screenshots) {
    m_module.addWatcher(&m_complaints);
    m_module.setSpeed(settings.speed);
    m_pictures.compareWith(settings.stored, settings.renew);
    connect(&m_server, &ServerThread::requestReceived, this, [this](const QString& request) {
        if (!m_settings.realServer.host.isEmpty()) {
            note(TraceEvent::Request, request); // the simulated one's are noted as they come
        }
        m_requests.add(request);
        emit requestReceived();
    });
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_module.advance();
        m_finger.advance();
        emit ticked();
    });
}

// The application goes first: it must not see the board vanish.
Rig::~Rig() {
    m_application.reset();
    m_board.reset();
}

Rig::Failure Rig::start() {
    if (Failure failure = startTrace()) {
        return failure;
    }
    if (Failure failure = startBoard()) {
        return failure;
    }
    m_server.apply([this](server::MeasurementServer& server) {
        server.setAnswerEverything(m_settings.serverAnswersEverything);
    });
    if (m_settings.startServer && !m_server.start()) {
        return {ExitStatus::PortTaken, m_server.error()};
    }
    for (const FaultOrder& fault : m_settings.faults) {
        m_faults.begin(fault);
    }
    m_timer.start(tickMs);
    m_application = std::make_unique<Application>(m_settings.application, m_board->environment());
    m_application->setQuiet(m_settings.quietApplication);
    if (m_settings.startApplication) { // see ServerThread
        const SharedProcessor shared = SharedProcessor::ofThisThread();
        m_application->setProcessor(shared);
        m_server.shareProcessor(shared);
    }
    connect(m_application.get(), &Application::wrote, this,
            [this](const QString& line) { m_log.add(line); });
    if (!m_settings.startApplication) {
        if (!m_settings.quietApplication) {
            announceEnvironment();
        }
    } else if (!m_application->start()) {
        return {ExitStatus::ApplicationNotStarted, m_application->error()};
    }
    return {};
}

Faults::Doors Rig::faultDoors() {
    Faults::Doors doors;
    doors.server = [this](const std::function<void(server::MeasurementServer&)>& action) {
        m_server.apply(action);
    };
    doors.switchServer = [this](bool on) {
        if (!on) {
            m_server.stop();
        } else if (m_settings.startServer) {
            m_server.start();
        }
    };
    doors.struck = [this](const QString& text) { note(TraceEvent::Fault, text); };
    doors.forbidPins = [this](bool forbidden) { m_board->setLinesForbidden(forbidden); };
    return doors;
}

Rig::Failure Rig::startTrace() {
    if (m_settings.trace.isEmpty()) {
        return {};
    }
    if (m_settings.traceIsVcd) {
        m_module.locked([this](const controller::Controller& controller) {
            m_trace = std::make_unique<VcdTrace>(controller);
        });
    } else {
        m_trace = std::make_unique<BusTrace>(m_settings.generation);
    }
    if (!m_trace->open(m_settings.trace)) {
        return {ExitStatus::FileNotWritten, QStringLiteral("cannot write the trace %1: %2")
                                                .arg(m_settings.trace, m_trace->errorString())};
    }
    m_module.addObserver(m_trace.get());
    m_module.addWatcher(&m_trace->fingers());
    traceRequests();
    return {};
}

// On the server's thread, so that they stand where they were.
void Rig::traceRequests() {
    m_server.apply([this](server::MeasurementServer& server) {
        connect(&server, &server::MeasurementServer::requestReceived, &server,
                [this](const QByteArray& line) {
                    note(TraceEvent::Request, QString::fromLatin1(line));
                });
        connect(&server, &server::MeasurementServer::replied, &server,
                [this](const QByteArray& reply) {
                    note(TraceEvent::Reply, QString::fromLatin1(reply).trimmed());
                });
    });
}

void Rig::note(TraceEvent event, const QString& text) {
    if (m_settings.trace.isEmpty()) {
        return;
    }
    m_module.locked([&](const controller::Controller& controller) {
        if (m_trace) {
            m_trace->note(event, text, controller.time());
        }
    });
}

Rig::Failure Rig::finishTrace() {
    if (!m_trace) {
        return {};
    }
    m_module.removeObserver(m_trace.get());
    m_module.removeWatcher(&m_trace->fingers());
    Failure failure;
    m_module.locked([&](const controller::Controller&) {
        if (!m_trace->finish()) {
            failure = {ExitStatus::FileNotWritten,
                       QStringLiteral("cannot write all of the trace %1: %2")
                           .arg(m_settings.trace, m_trace->errorString())};
        }
        m_trace.reset();
    });
    return failure;
}

Rig::Failure Rig::startBoard() {
    try {
        if (m_settings.boardDevice.isEmpty()) {
            m_board = std::make_unique<board::VirtualBoard>(m_faults.wires(), m_settings.board);
        } else {
            m_board = std::make_unique<board::KernelBoard>(m_faults.wires(),
                                                           m_settings.boardDevice.toStdString());
        }
    } catch (const board::BoardError& error) {
        return {ExitStatus::BoardFailed, QString::fromLocal8Bit(error.what())};
    }
    return {};
}

void Rig::announceEnvironment() const {
    const Launch& launch = m_application->launch();
    if (!launch.error.isEmpty()) {
        std::fprintf(stderr, "panelsim: %s\n", qUtf8Printable(launch.error));
        return;
    }
    std::printf("Start the application by hand with:\n  env");
    for (const auto& [name, value] : launch.variables) {
        std::printf(" '%s=%s'", name.c_str(), value.c_str());
    }
    std::printf(" %s\nIn gdb, give each with \"set environment NAME VALUE\".\n",
                qUtf8Printable((QStringList(launch.program) + launch.arguments).join(' ')));
    std::fflush(stdout);
}

void Rig::mark() {
    m_requests.mark();
    m_log.mark();
    m_markedKilobytes = m_application->residentKilobytes();
}

QString Rig::statistics() const {
    const board::Traffic traffic = m_board->traffic();
    const DisplayModule::Counts counts = m_module.counts();
    return QStringLiteral("spi-messages: %1\n"
                          "spi-bytes: %2\n"
                          "frames: %3\n"
                          "lists: %4\n"
                          "touch-tag-reads: %5\n"
                          "requests: %6\n"
                          "application-pid: %7\n"
                          "application-memory-kB: %8\n")
        .arg(traffic.messages)
        .arg(traffic.bytes)
        .arg(counts.frames)
        .arg(counts.swaps)
        .arg(counts.touchTagReads)
        .arg(m_requests.count())
        .arg(m_application->processId())
        .arg(m_application->residentKilobytes());
}

} // namespace panel
