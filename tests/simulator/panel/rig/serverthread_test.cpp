#include "patience.h"
#include "serverthread.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <gtest/gtest.h>

#include <memory>
#include <sched.h>

namespace panel {
namespace {

constexpr quint16 serverPort = 9800;

class ServerThreadTest : public testing::Test {
protected:
    // Blocks this thread while it waits, as the application does.
    QByteArray ask(QTcpSocket& socket, const QByteArray& request) {
        socket.write(request);
        EXPECT_TRUE(socket.waitForReadyRead(generousMs));
        return socket.readAll();
    }

    void connectTo(QTcpSocket& socket) {
        socket.connectToHost(QHostAddress::LocalHost, serverPort);
        ASSERT_TRUE(socket.waitForConnected(generousMs));
    }

    ServerThread m_server{1};
};

TEST_F(ServerThreadTest, AnswersWhileThisThreadIsBusy) {
    ASSERT_TRUE(m_server.start());
    QTcpSocket socket;
    connectTo(socket);
    EXPECT_EQ(ask(socket, "START 1\n"), "Ok\n");
}

TEST_F(ServerThreadTest, GoesBeforeOthersWhereTheSystemAllowsIt) {
    bool possible = false;
    const std::unique_ptr<QThread> other(QThread::create([&possible] {
        sched_param priority{};
        priority.sched_priority = 1;
        possible = sched_setscheduler(0, SCHED_RR, &priority) == 0;
    }));
    other->start();
    other->wait();
    int policy = 0;
    m_server.apply([&policy](server::MeasurementServer&) { policy = sched_getscheduler(0); });
    EXPECT_EQ(policy, possible ? SCHED_RR | SCHED_RESET_ON_FORK : SCHED_OTHER);
    EXPECT_EQ(sched_getscheduler(0), SCHED_OTHER) << "this thread stays as it was";
}

TEST_F(ServerThreadTest, SharesAProcessorOnRequest) {
    const auto processors = [] {
        cpu_set_t set;
        EXPECT_EQ(sched_getaffinity(0, sizeof set, &set), 0);
        return set;
    };
    const cpu_set_t before = processors();
    m_server.shareProcessor(SharedProcessor::ofThisThread());
    cpu_set_t servers;
    m_server.apply([&](server::MeasurementServer&) { servers = processors(); });
    EXPECT_EQ(CPU_COUNT(&servers), 1);
    const cpu_set_t after = processors();
    EXPECT_TRUE(CPU_EQUAL(&before, &after)) << "this thread stays as it was";
}

TEST_F(ServerThreadTest, TellsOfRequestsAndConnections) {
    ASSERT_TRUE(m_server.start());
    QSignalSpy requests(&m_server, &ServerThread::requestReceived);
    QTcpSocket socket;
    connectTo(socket);
    ask(socket, "PARAMS?\n");
    ASSERT_TRUE(requests.size() == 1 || requests.wait(generousMs));
    EXPECT_EQ(requests[0][0].toString(), "PARAMS?");
    EXPECT_EQ(m_server.connections(), 1);
    QSignalSpy changes(&m_server, &ServerThread::stateChanged);
    socket.disconnectFromHost();
    ASSERT_TRUE(changes.wait(generousMs));
    EXPECT_EQ(m_server.connections(), 0);
}

TEST_F(ServerThreadTest, StopsAndStartsAgain) {
    ASSERT_TRUE(m_server.start());
    EXPECT_TRUE(m_server.isListening());
    m_server.stop();
    EXPECT_FALSE(m_server.isListening());
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, serverPort);
    EXPECT_FALSE(socket.waitForConnected(generousMs));
    EXPECT_TRUE(m_server.start());
    EXPECT_TRUE(m_server.start()) << "starting twice does no harm";
}

TEST_F(ServerThreadTest, AppliesChangesOnTheServersThread) {
    ASSERT_TRUE(m_server.start());
    m_server.apply([](server::MeasurementServer& server) { server.setFixedSample({1, 2, 3, 4}); });
    QTcpSocket socket;
    connectTo(socket);
    EXPECT_TRUE(ask(socket, "DATA?\n").contains("\"Channel3\":4"));
}

TEST_F(ServerThreadTest, SaysWhenThePortIsTaken) {
    QTcpServer occupant;
    ASSERT_TRUE(occupant.listen(QHostAddress::LocalHost, serverPort));
    EXPECT_FALSE(m_server.start());
    EXPECT_TRUE(m_server.error().contains(QStringLiteral("9800")))
        << m_server.error().toStdString();
}

// --- in front of a real server

class ForwardingServerThreadTest : public testing::Test {
protected:
    // A simulated one on another port, on another thread, as the real one.
    ForwardingServerThreadTest() {
        m_real.moveToThread(&m_thread);
        m_thread.start();
        QMetaObject::invokeMethod(
            &m_real, [this] { EXPECT_TRUE(m_real.listen(realPort)); },
            Qt::BlockingQueuedConnection);
    }
    ~ForwardingServerThreadTest() override {
        QMetaObject::invokeMethod(
            &m_real,
            [this] {
                m_real.close();
                m_real.moveToThread(QCoreApplication::instance()->thread());
            },
            Qt::BlockingQueuedConnection);
        m_thread.quit();
        m_thread.wait();
    }

    static constexpr quint16 realPort = 9801;
    QThread m_thread;
    server::MeasurementServer m_real{1};
    ServerThread m_server{1, {"127.0.0.1", realPort}};
};

TEST_F(ForwardingServerThreadTest, PassesRequestsAndRepliesOn) {
    ASSERT_TRUE(m_server.start());
    QSignalSpy requests(&m_server, &ServerThread::requestReceived);
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, serverPort);
    ASSERT_TRUE(socket.waitForConnected(generousMs));
    socket.write("START 3\n");
    ASSERT_TRUE(socket.waitForReadyRead(generousMs));
    EXPECT_EQ(socket.readAll(), "Ok\n");
    ASSERT_TRUE(requests.size() == 1 || requests.wait(generousMs));
    EXPECT_EQ(requests[0][0].toString(), "START 3");
    EXPECT_EQ(m_server.connections(), 1);
    double timeConst = 0;
    QMetaObject::invokeMethod(
        &m_real, [&] { timeConst = m_real.params().timeConst; }, Qt::BlockingQueuedConnection);
    EXPECT_EQ(timeConst, 3.0);
}

TEST_F(ForwardingServerThreadTest, HangsUpWhereTheRealServerIsGone) {
    ASSERT_TRUE(m_server.start());
    QMetaObject::invokeMethod(
        &m_real, [this] { m_real.close(); }, Qt::BlockingQueuedConnection);
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, serverPort);
    ASSERT_TRUE(socket.waitForConnected(generousMs));
    EXPECT_TRUE(socket.waitForDisconnected(generousMs));
}

TEST_F(ForwardingServerThreadTest, StopsAndStartsAgain) {
    ASSERT_TRUE(m_server.start());
    m_server.stop();
    EXPECT_FALSE(m_server.isListening());
    ASSERT_TRUE(m_server.start());
    EXPECT_TRUE(m_server.isListening());
}

} // namespace
} // namespace panel
