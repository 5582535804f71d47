#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

// The service manager's end of the protocol: a socket at a path or, after '@', an abstract name.
// While it lives, NOTIFY_SOCKET names it.
class NotifySocket {
public:
    explicit NotifySocket(std::string name)
        : m_name(std::move(name)), m_socket(socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, m_name.data(), m_name.size());
        if (isAbstract()) {
            address.sun_path[0] = '\0';
        }
        const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + m_name.size());
        EXPECT_EQ(bind(m_socket, reinterpret_cast<const sockaddr*>(&address), length), 0)
            << std::strerror(errno);
        setenv("NOTIFY_SOCKET", m_name.c_str(), 1);
    }
    NotifySocket() : NotifySocket("@frontpanel-test-" + std::to_string(getpid())) {}
    NotifySocket(const NotifySocket&) = delete;
    NotifySocket& operator=(const NotifySocket&) = delete;
    ~NotifySocket() {
        unsetenv("NOTIFY_SOCKET");
        close(m_socket);
        if (!isAbstract()) {
            unlink(m_name.c_str());
        }
    }

    // What has arrived since the last call, a string each.
    std::vector<std::string> messages() const {
        std::vector<std::string> all;
        std::array<char, 4096> message{};
        ssize_t length = 0;
        while ((length = recv(m_socket, message.data(), message.size(), 0)) >= 0) {
            all.emplace_back(message.data(), static_cast<std::size_t>(length));
        }
        return all;
    }

private:
    bool isAbstract() const { return m_name[0] == '@'; }

    std::string m_name;
    int m_socket;
};
