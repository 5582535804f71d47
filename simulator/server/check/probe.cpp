#include "probe.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace servercheck {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int lateFactor = 4; // how many patiences something late is waited for

int connectedSocket(const QString& host, quint16 port) {
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int error =
        getaddrinfo(qUtf8Printable(host), qUtf8Printable(QString::number(port)), &hints, &found);
    if (error != 0) {
        throw Gone(gai_strerror(error));
    }
    const int socket = ::socket(found->ai_family, found->ai_socktype | SOCK_CLOEXEC, 0);
    const bool connected = socket >= 0 && connect(socket, found->ai_addr, found->ai_addrlen) == 0;
    const int reason = errno;
    freeaddrinfo(found);
    if (!connected) {
        close(socket);
        throw Gone(std::strerror(reason));
    }
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return socket;
}

} // namespace

Probe::Probe(const QString& host, quint16 port, milliseconds patience)
    : m_socket(connectedSocket(host, port)), m_patience(patience) {}

Probe::~Probe() {
    close(m_socket);
}

void Probe::send(const QByteArray& bytes) const {
    const ssize_t sent =
        ::send(m_socket, bytes.constData(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
    if (sent != bytes.size()) {
        throw Gone("the server has closed the connection");
    }
}

bool Probe::waitFor(milliseconds time) const {
    pollfd source{m_socket, POLLIN, 0};
    return poll(&source, 1, static_cast<int>(time.count())) > 0;
}

QByteArray Probe::receive() const {
    std::array<char, 65536> buffer{};
    const ssize_t count = recv(m_socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (count <= 0) {
        throw Gone("the server has closed the connection");
    }
    return {buffer.data(), static_cast<int>(count)};
}

Reply Probe::ask(const QByteArray& request) const {
    Reply reply;
    send(request + '\n');
    const auto sent = Clock::now();
    if (!waitFor(m_patience * lateFactor)) {
        return reply;
    }
    reply.after = std::chrono::duration_cast<milliseconds>(Clock::now() - sent);
    reply.bytes = receive();
    reply.rest = listen();
    return reply;
}

QByteArray Probe::listen(milliseconds quiet) const {
    QByteArray all;
    while (waitFor(quiet)) {
        all += receive();
    }
    return all;
}

QByteArray Probe::objects(int count) const {
    QByteArray all;
    while (all.count('}') < count && waitFor(m_patience * lateFactor)) {
        all += receive();
    }
    return all;
}

void Probe::halfClose() const {
    shutdown(m_socket, SHUT_WR);
}

QByteArray Probe::untilClosed(bool* closed) const {
    QByteArray all;
    *closed = false;
    try {
        while (waitFor(m_patience * lateFactor)) {
            all += receive();
        }
    } catch (const Gone&) {
        *closed = true;
    }
    return all;
}

} // namespace servercheck
