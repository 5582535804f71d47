#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QThread>

#include <vector>

class QTcpServer;
class QTcpSocket;

// A server on 127.0.0.1:9800 that answers as a test tells it to, on a thread of its own, so that
// the test may block in the client meanwhile. Every call waits until that thread has done it.
class ScriptedServer {
public:
    ScriptedServer();
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    // Answers requests whose first word is `command` with `replies`, one after the other, and then
    // with the last of them for ever. An empty reply is none, and so is every other command's.
    void answer(const QByteArray& command, const QList<QByteArray>& replies);
    // Sends `bytes` without being asked.
    void send(const QByteArray& bytes);
    void hangUp();
    // Leaves what the client sends in the network until told otherwise.
    void setReading(bool on);

    // The one that lives, if any.
    static ScriptedServer* current() { return s_current; }

    // What it does about the last of `bytes` bytes of a client's requests, once it has read them
    // all; unknown where it does not read or has hung up.
    enum class Reaction { Reply, Silence, Unknown };
    Reaction reactionTo(quint16 clientPort, qint64 bytes);

    // The requests so far, each with its line feed.
    std::vector<QByteArray> requests();
    // Waits until there are `count` requests, for up to ten seconds, and returns them all.
    std::vector<QByteArray> waitForRequests(std::size_t count);
    // How many connections have been made so far.
    int connections();

private:
    template<typename Function>
    void onThread(Function function);
    void listen();
    void accept();
    void read();

    inline static ScriptedServer* s_current = nullptr;

    QThread m_thread;
    QObject m_context; // lives on m_thread, as all that follows
    QTcpServer* m_server = nullptr;
    QTcpSocket* m_client = nullptr;
    quint16 m_clientPort = 0;
    qint64 m_received = 0; // over this connection
    bool m_reading = true;
    bool m_replied = false; // to the last request
    QByteArray m_pending;
    QHash<QByteArray, QList<QByteArray>> m_replies;
    std::vector<QByteArray> m_requests;
    int m_connections = 0;
};
