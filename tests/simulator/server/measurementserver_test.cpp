#include "debuglog.h"
#include "measurementserver.h"
#include "qtprinting.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

using server::Fault;
using server::MeasurementServer;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// For whatever must happen in the end; a test that passes never waits so long.
constexpr int patienceMs = 20000;

constexpr auto defaultParams =
    R"({"Ref0":0.05,"Ref1":0.15,"Ref2":0.25,"Ref3":0.35,"TimeConst":0.5})"
    "\n";

template<typename Condition>
bool waitFor(Condition condition) {
    return QTest::qWaitFor(condition, patienceMs);
}

// A client in the thread of the server, which gets on with it whenever the test waits.
class Client {
public:
    explicit Client(const MeasurementServer& server) {
        m_socket.connectToHost(QHostAddress::LocalHost, server.port());
        EXPECT_TRUE(waitFor([&] {
            return m_socket.state() == QAbstractSocket::ConnectedState &&
                   server.connectionCount() > 0;
        }));
    }

    void send(const QByteArray& bytes) { m_socket.write(bytes); }

    // What arrives up to and with the next line feed.
    QByteArray line() {
        EXPECT_TRUE(waitFor([this] { return m_socket.canReadLine(); }));
        return m_socket.readLine();
    }

    QByteArray ask(const QByteArray& request) {
        send(request);
        return line();
    }

    bool waitForEnd() {
        return waitFor([this] { return m_socket.state() == QAbstractSocket::UnconnectedState; });
    }

private:
    QTcpSocket m_socket;
};

class MeasurementServerTest : public testing::Test {
protected:
    MeasurementServerTest() { EXPECT_TRUE(server.listen(0)); }

    MeasurementServer server{1};
};

// --- listening ---

TEST(MeasurementServerListenTest, UsesPort9800UnlessTold) {
    MeasurementServer server(1);
    EXPECT_FALSE(server.isListening());
    ASSERT_TRUE(server.listen()) << server.errorString().toStdString();
    EXPECT_TRUE(server.isListening());
    EXPECT_EQ(server.port(), 9800);
}

TEST_F(MeasurementServerTest, TakenPortIsNamedTogetherWithTheMend) {
    MeasurementServer second(1);
    EXPECT_FALSE(second.listen(server.port()));
    EXPECT_FALSE(second.isListening());
    const std::string error = second.errorString().toStdString();
    EXPECT_THAT(error, HasSubstr("127.0.0.1:" + std::to_string(server.port())));
    EXPECT_THAT(error, HasSubstr("end the program that holds it"));
}

TEST_F(MeasurementServerTest, CountsItsConnections) {
    QSignalSpy changed(&server, &MeasurementServer::connectionsChanged);
    {
        Client client(server);
        EXPECT_EQ(server.connectionCount(), 1);
    }
    EXPECT_TRUE(waitFor([this] { return server.connectionCount() == 0; }));
    ASSERT_THAT(changed, SizeIs(2));
    EXPECT_EQ(changed[0][0].toInt(), 1);
    EXPECT_EQ(changed[1][0].toInt(), 0);
}

TEST_F(MeasurementServerTest, CloseDropsConnectionsAndStopsListening) {
    Client client(server);
    server.close();
    EXPECT_FALSE(server.isListening());
    EXPECT_EQ(server.connectionCount(), 0);
    EXPECT_TRUE(client.waitForEnd());
}

TEST_F(MeasurementServerTest, ListensAgainWithItsStateAfterClose) {
    {
        Client client(server);
        EXPECT_EQ(client.ask("START 2\n"), "Ok\n");
    }
    server.close();
    ASSERT_TRUE(server.listen(0));
    Client client(server);
    EXPECT_THAT(client.ask("PARAMS?\n").toStdString(), HasSubstr(R"("TimeConst":2)"));
    EXPECT_TRUE(server.isRunning());
}

TEST_F(MeasurementServerTest, MayBeDestroyedWithClientsConnected) {
    auto doomed = std::make_unique<MeasurementServer>(1);
    ASSERT_TRUE(doomed->listen(0));
    Client client(*doomed);
    QSignalSpy changed(doomed.get(), &MeasurementServer::connectionsChanged);
    doomed.reset();
    EXPECT_TRUE(client.waitForEnd());
    EXPECT_TRUE(changed.isEmpty());
}

// --- requests ---

TEST_F(MeasurementServerTest, AnswersARequest) {
    Client client(server);
    EXPECT_EQ(client.ask("PARAMS?\n"), defaultParams);
}

TEST_F(MeasurementServerTest, RequestMayArriveInPieces) {
    QSignalSpy received(&server, &MeasurementServer::requestReceived);
    Client client(server);
    client.send("HEL");
    QTest::qWait(20); // gives the pieces a chance to travel apart; passes either way
    client.send("LO\nPAR");
    EXPECT_EQ(client.line(), "Error\n");
    EXPECT_EQ(client.ask("AMS?\n"), defaultParams);
    ASSERT_THAT(received, SizeIs(2));
    EXPECT_EQ(received[0][0].toByteArray(), "HELLO");
    EXPECT_EQ(received[1][0].toByteArray(), "PARAMS?");
}

TEST_F(MeasurementServerTest, SeveralRequestsMayArriveAtOnce) {
    Client client(server);
    client.send("START 1\nDAC 0,0.1\nSTOP\nnonsense\nPARAMS?\n");
    EXPECT_EQ(client.line(), "Ok\n");
    EXPECT_EQ(client.line(), "Error\n");
    EXPECT_THAT(client.line().toStdString(), HasSubstr(R"("Ref0":0.1)"));
    EXPECT_FALSE(server.isRunning());
}

TEST_F(MeasurementServerTest, EndlessRequestIsAnErrorAndTheNextOneIsHeard) {
    Client client(server);
    EXPECT_EQ(client.ask(QByteArray(100000, 'x')), "Error\n");
    client.send("\nPARAMS?\n");
    QByteArray reply = client.line();
    while (reply == "Error\n")
        reply = client.line();
    EXPECT_EQ(reply, defaultParams);
}

TEST_F(MeasurementServerTest, ClientsShareOneInstrument) {
    Client one(server);
    Client other(server);
    EXPECT_EQ(one.ask("START 3\n"), "Ok\n");
    EXPECT_THAT(other.ask("PARAMS?\n").toStdString(), HasSubstr(R"("TimeConst":3)"));
}

TEST_F(MeasurementServerTest, CountsByItsClock) {
    double now = 0.0;
    server.setClock([&now] { return now; });
    Client client(server);
    client.ask("START 0.5\n");
    now = 2.0;
    const QByteArray first = client.ask("DATA?\n");
    EXPECT_EQ(client.ask("DATA?\n"), first); // no time has passed
    now = 3.0;
    EXPECT_NE(client.ask("DATA?\n"), first);
}

TEST_F(MeasurementServerTest, RequestReceivedMayCloseTheServer) {
    const DebugLog log; // Qt would complain of a reply to a closed connection
    QObject::connect(&server, &MeasurementServer::requestReceived, &server,
                     &MeasurementServer::close);
    Client client(server);
    client.send("PARAMS?\nPARAMS?\n");
    EXPECT_TRUE(client.waitForEnd());
    EXPECT_THAT(log.messages(), IsEmpty());
}

// --- the back door ---

TEST_F(MeasurementServerTest, AnswersEverythingWhenTold) {
    server.setAnswerEverything(true);
    Client client(server);
    EXPECT_EQ(client.ask("STOP\n"), "Ok\n");
    EXPECT_EQ(client.ask("DAC 0,0.1\n"), "Ok\n");
}

TEST_F(MeasurementServerTest, FixedSampleIsReportedUntilCleared) {
    Client client(server);
    server.setFixedSample({1, 2, 3, 4});
    EXPECT_EQ(client.ask("DATA?\n"),
              R"({"Channel0":1,"Channel1":2,"Channel2":3,"Channel3":4,"TimeConst":0.5})"
              "\n");
    server.clearFixedSample();
    EXPECT_EQ(client.ask("DATA?\n"),
              R"({"Channel0":0,"Channel1":0,"Channel2":0,"Channel3":0,"TimeConst":0.5})"
              "\n");
}

TEST_F(MeasurementServerTest, ReplacedReplyIsSentUntilClearedAndTheCommandIsCarriedOut) {
    Client client(server);
    server.setReply("START", "Busy\n");
    EXPECT_EQ(client.ask("START 4\n"), "Busy\n");
    EXPECT_EQ(server.params().timeConst, 4.0);
    EXPECT_EQ(client.ask("nonsense\n"), "Error\n"); // other replies stay
    server.clearReply("START");
    EXPECT_EQ(client.ask("START 4\n"), "Ok\n");
}

TEST_F(MeasurementServerTest, ReplacesTheReplyToACommandWithoutArguments) {
    Client client(server);
    server.setReply("DATA?", "[1,2]\n");
    EXPECT_EQ(client.ask("DATA?\n"), "[1,2]\n");
    EXPECT_EQ(client.ask("PARAMS?\n"), defaultParams);
}

TEST_F(MeasurementServerTest, ParametersCanBeSetToAnything) {
    Client client(server);
    server.setParams({0.001, {1, 2, 3, 4}});
    EXPECT_EQ(client.ask("PARAMS?\n"), R"({"Ref0":1,"Ref1":2,"Ref2":3,"Ref3":4,"TimeConst":0.001})"
                                       "\n");
}

// --- faults ---

TEST_F(MeasurementServerTest, SilentServerCarriesOutButDoesNotReply) {
    Client client(server);
    server.setFault(Fault::Silent);
    client.send("START 4\nPARAMS?\n");
    ASSERT_TRUE(waitFor([this] { return server.isRunning(); }));
    server.setFault(Fault::None);
    EXPECT_EQ(client.ask("nonsense\n"), "Error\n"); // the first reply of all
}

TEST_F(MeasurementServerTest, LateReplyComesWhenThePanelHasStoppedWaiting) {
    Client client(server);
    server.setFault(Fault::Late);
    // Timers of one thread fire in order, however slow it is.
    bool stoppedWaiting = false;
    QObject::connect(&server, &MeasurementServer::requestReceived, &server, [&] {
        QTimer::singleShot(50, Qt::PreciseTimer, &server, [&] { stoppedWaiting = true; });
    });
    EXPECT_EQ(client.ask("PARAMS?\n"), defaultParams);
    EXPECT_TRUE(stoppedWaiting);
}

TEST_F(MeasurementServerTest, LateReplyToAClientThatHasGoneIsDropped) {
    server.setFault(Fault::Late);
    {
        QSignalSpy received(&server, &MeasurementServer::requestReceived);
        Client client(server);
        client.send("PARAMS?\n");
        ASSERT_TRUE(waitFor([&] { return !received.isEmpty(); }));
    }
    EXPECT_TRUE(waitFor([this] { return server.connectionCount() == 0; }));
    QTest::qWait(150); // past the moment of the reply
}

TEST_F(MeasurementServerTest, SpoiledReplyIsSent) {
    Client client(server);
    server.setFault(Fault::NotObject);
    EXPECT_EQ(client.ask("PARAMS?\n").at(0), '[');
}

TEST_F(MeasurementServerTest, HugeReplyArrivesWhole) {
    Client client(server);
    server.setFault(Fault::Huge);
    EXPECT_EQ(client.ask("PARAMS?\n").size(), 1048576);
}

TEST_F(MeasurementServerTest, ServerHangsUpInsteadOfReplyingAndTakesANewConnection) {
    Client client(server);
    server.setFault(Fault::CloseConnection);
    client.send("PARAMS?\n");
    EXPECT_TRUE(client.waitForEnd());
    server.setFault(Fault::None);
    Client next(server);
    EXPECT_EQ(next.ask("PARAMS?\n"), defaultParams);
}

// --- time ---

// With so long a time constant the counter holds all pulses since the server was made, at least
// those of the last ten seconds.
TEST(MeasurementServerClockTest, TimePassesAsItReallyDoes) {
    QElapsedTimer longer;
    longer.start();
    MeasurementServer server(1);
    QElapsedTimer shorter;
    shorter.start();
    ASSERT_TRUE(server.listen(0));
    Client client(server);
    EXPECT_EQ(client.ask("START 10\n"), "Ok\n");
    EXPECT_TRUE(waitFor([&] { return shorter.elapsed() >= 100; }));

    const double least =
        10000.0 * std::min(10.0, static_cast<double>(shorter.nsecsElapsed()) * 1e-9);
    const QByteArray reply = client.ask("DATA?\n");
    const double most = 10000.0 * static_cast<double>(longer.nsecsElapsed()) * 1e-9;
    const double pulses =
        QJsonDocument::fromJson(reply).object().value(QStringLiteral("Channel0")).toDouble();
    // Channel 0 counts every pulse; their number scatters by its square root.
    EXPECT_GE(pulses, least - 5.0 * std::sqrt(least));
    EXPECT_LE(pulses, most + 5.0 * std::sqrt(most));
}

// --- bounds ---

TEST_F(MeasurementServerTest, RequestOfTheGreatestLengthIsReadToItsEnd) {
    Client client(server);
    client.send(QByteArray(1024, 'x'));
    QTest::qWait(50); // gives the server a chance to cut it off; passes either way
    client.send("\nPARAMS?\n");
    EXPECT_EQ(client.line(), "Error\n");
    EXPECT_EQ(client.line(), defaultParams);
}

TEST_F(MeasurementServerTest, LongerRequestIsAnErrorBeforeItsEnd) {
    Client client(server);
    EXPECT_EQ(client.ask(QByteArray(1025, 'x')), "Error\n");
}

} // namespace
