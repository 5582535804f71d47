#include "servicemanager.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace {

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

// The bytes of sockaddr_un::sun_path; empty for what is no name of a socket.
std::string socketName() {
    std::string name = variable("NOTIFY_SOCKET");
    const bool abstract = !name.empty() && name.front() == '@';
    const bool usable = abstract || (!name.empty() && name.front() == '/');
    if (!usable || name.size() >= sizeof(sockaddr_un::sun_path)) {
        return {};
    }
    if (abstract) {
        name.front() = '\0'; // the name ends with its length
    } else {
        name.push_back('\0');
    }
    return name;
}

// Half of what WATCHDOG_USEC grants, if that is for this process.
std::optional<std::chrono::microseconds> signPeriod() {
    const std::string process = variable("WATCHDOG_PID");
    if (!process.empty() && process != std::to_string(getpid())) {
        return std::nullopt;
    }
    const std::chrono::microseconds granted(
        std::strtoll(variable("WATCHDOG_USEC").c_str(), nullptr, 10));
    if (granted.count() <= 0) {
        return std::nullopt;
    }
    return granted / 2;
}

} // namespace

ServiceManager::ServiceManager(Clock now) : m_address(socketName()), m_now(std::move(now)) {
    if (m_address.empty()) {
        return;
    }
    m_socket = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    m_period = signPeriod();
}

ServiceManager::~ServiceManager() {
    if (m_socket >= 0) {
        close(m_socket);
    }
}

void ServiceManager::starting(const std::string& status, std::chrono::seconds patience) {
    const std::chrono::microseconds extension(patience);
    tell("STATUS=" + status + "\nEXTEND_TIMEOUT_USEC=" + std::to_string(extension.count()) + "\n");
}

void ServiceManager::ready(const std::string& status) {
    tell("READY=1\nSTATUS=" + status + "\n");
}

void ServiceManager::alive() {
    if (!m_untold.empty()) {
        tell({});
    }
    if (!m_period) {
        return;
    }
    const auto now = m_now();
    if ((!m_lastSign || now - *m_lastSign >= *m_period) && send("WATCHDOG=1\n")) {
        m_lastSign = now;
    }
}

// Signs of life do not come this way: an old one is worth nothing.
void ServiceManager::tell(const std::string& lines) {
    if (m_address.empty()) {
        return;
    }
    m_untold += lines;
    if (send(m_untold)) {
        m_untold.clear();
    }
}

bool ServiceManager::send(const std::string& lines) const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, m_address.data(), m_address.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + m_address.size());
    return sendto(m_socket, lines.data(), lines.size(), MSG_NOSIGNAL,
                  reinterpret_cast<const sockaddr*>(&address), length) >= 0;
}
