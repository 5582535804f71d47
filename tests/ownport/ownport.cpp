// Runs a program of tests so that TCP port 9800, which the application has no choice about, is its
// own:
//
//   ownport PROGRAM ARGUMENT...   in a network namespace of its own, where the machine allows that;
//                                 where it does not, when no other program that ownport runs on
//                                 this machine holds the port, whoever runs it
//   ownport --check               status 0 if there are namespaces here; 1, and the reason, if not
//   ownport --hold NAME PROGRAM ARGUMENT...
//                                 waits for NAME as the first form may wait for the port
//
// PROGRAM takes this process's place, so its status and its end are the caller's to see. What fails
// on the way to it gives status 125. Lines "ownport: ..." on the standard error tell how it came by
// the port, and when a wait for it begins.

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <net/if.h>
#include <poll.h>
#include <sched.h>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

constexpr int failed = 125;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::generic_category().message(errno));
}

void write(const char* path, const std::string& text) {
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0 || ::write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        fail(path);
    }
    close(file);
}

// A new network namespace belongs to the superuser, or to whoever has a new user namespace. There
// everybody keeps the identity they had, so that files look the same.
void makeNamespace() {
    if (unshare(CLONE_NEWNET) == 0) {
        return;
    }
    const std::string user = std::to_string(getuid());
    const std::string group = std::to_string(getgid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
        fail("unshare");
    }
    write("/proc/self/setgroups", "deny");
    write("/proc/self/uid_map", user + " " + user + " 1");
    write("/proc/self/gid_map", group + " " + group + " 1");
}

// A new network has nothing but a loopback interface that is down.
void raiseLoopback() {
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq loopback{};
    std::strcpy(loopback.ifr_name, "lo");
    if (socket < 0 || ioctl(socket, SIOCGIFFLAGS, &loopback) != 0) {
        fail("the loopback interface");
    }
    loopback.ifr_flags = static_cast<short>(loopback.ifr_flags | IFF_UP);
    if (ioctl(socket, SIOCSIFFLAGS, &loopback) != 0) {
        fail("raising the loopback interface");
    }
    close(socket);
}

void enterNamespace() {
    makeNamespace();
    raiseLoopback();
}

// Why there are no namespaces here; empty if there are. Found out by a process that tries, as half
// a namespace could not be left again.
std::string obstacle() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail("pipe");
    }
    const pid_t child = fork();
    if (child < 0) {
        fail("fork");
    }
    if (child == 0) {
        try {
            enterNamespace();
        } catch (const std::exception& error) {
            const std::string reason = error.what();
            _exit(::write(ends[1], reason.data(), reason.size()) > 0 ? 1 : failed);
        }
        _exit(0);
    }
    close(ends[1]);
    std::array<char, 256> reason{};
    const ssize_t length = read(ends[0], reason.data(), reason.size());
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (length < 0 || (length == 0 && status != 0)) {
        throw std::runtime_error("cannot find out whether there are network namespaces");
    }
    return {reason.data(), static_cast<std::size_t>(length)};
}

// Whoever has bound this name holds the port. Such names have no file and no owner; they belong to
// a network, as the port does, and go with the last process that has the socket.
class HoldersName {
public:
    explicit HoldersName(const std::string& name)
        : m_length(static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size())) {
        if (name.size() >= sizeof m_address.sun_path) {
            throw std::runtime_error("the name is too long: " + name);
        }
        m_address.sun_family = AF_UNIX;
        name.copy(&m_address.sun_path[1], name.size());
    }
    const sockaddr* address() const { return reinterpret_cast<const sockaddr*>(&m_address); }
    socklen_t length() const { return m_length; }

private:
    sockaddr_un m_address{};
    socklen_t m_length;
};

int newSocket(int flags) {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | flags, 0);
    if (socket < 0) {
        fail("socket");
    }
    return socket;
}

// Returns when the holder is gone. Nobody ever accepts the connection; the kernel ends it then.
void waitForHoldersEnd(const HoldersName& name) {
    const int socket = newSocket(SOCK_CLOEXEC);
    if (connect(socket, name.address(), name.length()) == 0) {
        pollfd end{socket, 0, 0}; // a hang-up is told unasked
        poll(&end, 1, -1);
    } else if (errno != ECONNREFUSED) {
        fail("waiting for the port");
    }
    close(socket);
}

void say(const std::string& what) {
    std::fprintf(stderr, "ownport: %s\n", what.c_str());
}

// The socket stays open in the program that takes this process's place, and in its children.
void hold(const HoldersName& name) {
    const int socket = newSocket(0);
    bool waiting = false;
    while (bind(socket, name.address(), name.length()) != 0) {
        if (errno != EADDRINUSE) {
            fail("holding the port");
        }
        if (!waiting) {
            say("waits for another program's end");
            waiting = true;
        }
        waitForHoldersEnd(name);
    }
    if (listen(socket, SOMAXCONN) != 0) {
        fail("holding the port");
    }
    say("holds the port");
}

void takePort() {
    const std::string reason = obstacle();
    if (!reason.empty()) {
        say("there are no network namespaces here (" + reason + ")");
        hold(HoldersName("frontpanel-tests-port-9800"));
        return;
    }
    enterNamespace();
    say("has the port in a network namespace");
}

int check() {
    const std::string reason = obstacle();
    std::printf("%s", reason.c_str());
    return reason.empty() ? 0 : 1;
}

// Tests end programs on purpose.
void leaveNoCoreFiles() {
    rlimit limit{};
    getrlimit(RLIMIT_CORE, &limit);
    limit.rlim_cur = 0;
    setrlimit(RLIMIT_CORE, &limit);
}

int run(const std::vector<std::string>& arguments, char** argv) {
    if (arguments.size() == 2 && arguments[1] == "--check") {
        return check();
    }
    char** program = argv + 1;
    if (arguments.size() > 3 && arguments[1] == "--hold") {
        hold(HoldersName(arguments[2]));
        program = argv + 3;
    } else if (arguments.size() < 2 || arguments[1].rfind("--", 0) == 0) {
        throw std::runtime_error("which program is to be run?");
    } else if (arguments.back() != "--gtest_list_tests") { // a list needs no port
        takePort();
    }
    leaveNoCoreFiles();
    execvp(*program, program);
    fail(*program);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run({argv, argv + argc}, argv);
    } catch (const std::exception& error) {
        say(error.what());
    }
    return failed;
}
