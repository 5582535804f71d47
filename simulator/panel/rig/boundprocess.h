#pragma once

#include <QProcess>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace panel {

// A child that the kernel kills when we die, whatever kills us.
class BoundProcess : public QProcess {
public:
    using QProcess::QProcess;

protected:
    // Runs in the child between fork and exec.
    void setupChildProcess() override {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != m_parent) {
            _exit(1); // we died before the line above
        }
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
    }

private:
    const pid_t m_parent = getpid();
};

} // namespace panel
