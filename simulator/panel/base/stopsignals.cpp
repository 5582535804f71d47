#include "stopsignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace panel {

namespace {

sigset_t stopSignals() {
    sigset_t stops;
    sigemptyset(&stops);
    sigaddset(&stops, SIGINT);
    sigaddset(&stops, SIGTERM);
    sigaddset(&stops, SIGHUP);
    return stops;
}

} // namespace

void StopSignals::block() {
    const sigset_t stops = stopSignals();
    sigprocmask(SIG_BLOCK, &stops, nullptr);
}

StopSignals::StopSignals() {
    const sigset_t stops = stopSignals();
    m_descriptor = signalfd(-1, &stops, SFD_CLOEXEC | SFD_NONBLOCK);
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info{};
        if (read(m_descriptor, &info, sizeof info) == sizeof info) {
            emit received();
        }
    });
}

StopSignals::~StopSignals() {
    m_notifier.reset(); // it must not watch a closed descriptor
    close(m_descriptor);
}

} // namespace panel
