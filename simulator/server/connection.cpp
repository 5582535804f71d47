#include "connection.h"

#include <QTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace server {

namespace {

constexpr std::chrono::milliseconds delayStep{10};

bool wouldBlock() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

} // namespace

Connection::Connection(qintptr descriptor, QObject* parent)
    : QObject(parent), m_socket(static_cast<int>(descriptor)),
      m_readable(descriptor, QSocketNotifier::Read),
      m_writable(descriptor, QSocketNotifier::Write) {
    // Replies leave at once, also the second one of two.
    const int on = 1;
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    m_writable.setEnabled(false);
    connect(&m_readable, &QSocketNotifier::activated, this, &Connection::read);
    connect(&m_writable, &QSocketNotifier::activated, this, &Connection::flush);
}

Connection::~Connection() {
    blockSignals(true);
    close();
}

void Connection::read() {
    std::array<char, 4096> buffer{};
    const ssize_t count = recv(m_socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (count < 0) {
        if (!wouldBlock())
            close();
        return;
    }
    if (count == 0) {
        m_inputEnded = true;
        m_readable.setEnabled(false); // it would report the end again and again
    }
    m_input.append(buffer.data(), static_cast<int>(count));
    emit arrived();
}

void Connection::send(const QByteArray& bytes) {
    m_output += bytes;
    flush();
}

void Connection::sendLater(const QByteArray& bytes, std::chrono::milliseconds delay) {
    ++m_due;
    sendWhenDue(bytes, delay);
}

// Step by step: where everything on a machine has stood still, only one step is over at once.
void Connection::sendWhenDue(const QByteArray& bytes, std::chrono::milliseconds delay) {
    const auto step = std::min(delay, delayStep);
    QTimer::singleShot(step, Qt::PreciseTimer, this, [this, bytes, rest = delay - step] {
        if (rest.count() > 0) {
            sendWhenDue(bytes, rest);
        } else {
            --m_due;
            send(bytes);
        }
    });
}

void Connection::flush() {
    while (m_open && !m_output.isEmpty()) {
        const ssize_t count =
            ::send(m_socket, m_output.constData(), static_cast<std::size_t>(m_output.size()),
                   MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count < 0 && wouldBlock())
            break;
        if (count < 0)
            return close();
        m_output.remove(0, static_cast<int>(count));
    }
    m_writable.setEnabled(m_open && !m_output.isEmpty());
    closeIfDone();
}

void Connection::closeWhenSent() {
    m_closing = true;
    closeIfDone();
}

void Connection::closeIfDone() {
    if (m_closing && m_due == 0 && m_output.isEmpty())
        close();
}

void Connection::close() {
    if (!m_open)
        return;
    m_open = false;
    m_readable.setEnabled(false);
    m_writable.setEnabled(false);
    ::close(m_socket);
    emit ended();
}

} // namespace server
