// Replies of a measurement server, as the application's client takes them over a connection.
#include "datareader.h"
#include "input.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <arpa/inet.h>
#include <cstdio>
#include <mutex>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sanitizer/allocator_interface.h>
#include <sanitizer/lsan_interface.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

// Answers whatever comes with the reply that is set, one connection after the other.
class Server {
public:
    Server() : m_listener(socket(AF_INET, SOCK_STREAM, 0)) {
        const int on = 1;
        setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(9800);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            listen(m_listener, 16) != 0) {
            std::perror("port 9800 of the loopback address");
            std::_Exit(2);
        }
        std::thread([this] { serve(); }).detach();
    }
    void setReply(std::string reply) {
        const std::lock_guard lock(m_mutex);
        m_reply = std::move(reply);
    }

private:
    std::string reply() {
        const std::lock_guard lock(m_mutex);
        return m_reply;
    }
    [[noreturn]] void serve() {
        for (;;) {
            const int client = accept(m_listener, nullptr, nullptr);
            const int on = 1;
            setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            char request[256];
            while (recv(client, request, sizeof request, 0) > 0) {
                const std::string answer = reply();
                send(client, answer.data(), answer.size(), MSG_NOSIGNAL);
            }
            close(client);
        }
    }

    int m_listener;
    std::mutex m_mutex;
    std::string m_reply;
};

void ignoreMessages(QtMsgType /*type*/, const QMessageLogContext& /*context*/,
                    const QString& /*text*/) {}

// Qt 5.15's own JSON parser loses the earlier value when a name is repeated and that value is an
// array or object. Another thread that frees something meanwhile only costs one input.
bool parserLoses(const std::string& reply) {
    const QByteArray text = QString::fromUtf8(reply.c_str()).toLatin1();
    const __lsan::ScopedDisabler here;
    const std::size_t before = __sanitizer_get_current_allocated_bytes();
    QJsonDocument::fromJson(text);
    return __sanitizer_get_current_allocated_bytes() != before;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static int argumentCount = 1;
    static char program[] = "replies";
    static char* arguments[] = {program, nullptr};
    static const QCoreApplication application(argumentCount, arguments);
    static const QtMessageHandler previous = qInstallMessageHandler(ignoreMessages);
    static Server& server = *new Server; // its thread outlives everything
    (void)previous;
    if (size == 0) {
        return 0; // no reply is waited for, for long
    }
    const std::string reply(reinterpret_cast<const char*>(data), size);
    if (parserLoses(reply)) {
        return 0; // nothing to learn about the client
    }
    server.setReply(reply);
    static DataReader reader; // one connection for all: ports would run out
    reader.start();           // reads the parameters first
    reader.updateData();
    const DataReaderParams params = reader.getParams();
    fuzz::require(params.timeConst == params.timeConst);
    return 0;
}
