#pragma once

#include "sharedprocessor.h"

#include <QProcess>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace panel {

// A child that the kernel kills when we die, whatever kills us. It runs on `processor`, if one is
// given.
class BoundProcess : public QProcess {
public:
    explicit BoundProcess(SharedProcessor processor = {}) : m_processor(processor) {}

protected:
    // Runs in the child between fork and exec.
    void setupChildProcess() override {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != m_parent) {
            _exit(1); // we died before the line above
        }
        m_processor.take();
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
    }

private:
    const pid_t m_parent = getpid();
    const SharedProcessor m_processor;
};

} // namespace panel
