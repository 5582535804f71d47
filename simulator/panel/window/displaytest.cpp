#include "displaytest.h"

#include <QGuiApplication>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace panel {

namespace {

// Qt says much, and aborts: neither is to be seen.
void keepQuiet() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
}

} // namespace

bool canOpenDisplay(int argc, char* argv[]) {
    const pid_t child = fork();
    if (child == 0) {
        keepQuiet();
        const QGuiApplication application(argc, argv);
        _exit(0);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

} // namespace panel
