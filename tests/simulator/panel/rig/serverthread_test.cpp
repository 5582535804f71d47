#include "serverthread.h"

#include <QHostAddress>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>

#include <gtest/gtest.h>

namespace panel {
namespace {

constexpr int generousMs = 60000;
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

} // namespace
} // namespace panel
