#include "datareader.h"
#include "debuglog.h"
#include "patience.h"
#include "patientsocket.h"
#include "qtprinting.h"
#include "scriptedserver.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QMetaMethod>
#include <QNetworkProxy>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <ostream>
#include <type_traits>
#include <vector>

namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::UnorderedElementsAre;

// For whatever must happen in the end; a test that passes never waits so long.

const QByteArray goodParams = R"({"TimeConst":10,"Ref0":0.05,"Ref1":0.15,"Ref2":-0.25,"Ref3":1.5})";
const QByteArray goodData =
    R"({"TimeConst":10,"Channel0":4000,"Channel1":300.5,"Channel2":20,"Channel3":1e6})";

QByteArray paramsWithTimeConst(const char* seconds) {
    return QByteArray(R"({"TimeConst":)") + seconds + "}";
}

// A single-shot timer that is waiting to call.
struct ArmedTimer {
    int intervalMs;
    Qt::TimerType type;
    friend bool operator==(const ArmedTimer& a, const ArmedTimer& b) {
        return a.intervalMs == b.intervalMs && a.type == b.type;
    }
    friend void PrintTo(const ArmedTimer& timer, std::ostream* out) {
        *out << timer.intervalMs << " ms, type " << timer.type;
    }
};

// Qt keeps each single-shot timer as a child of its thread's event dispatcher.
QList<QObject*> singleShotTimers() {
    QList<QObject*> timers;
    for (QObject* child : QAbstractEventDispatcher::instance()->children()) {
        if (qstrcmp(child->metaObject()->className(), "QSingleShotTimer") == 0)
            timers << child;
    }
    return timers;
}

// The dispatcher knows with what interval and type each was started.
std::vector<ArmedTimer> armedTimers() {
    std::vector<ArmedTimer> armed;
    for (QObject* object : singleShotTimers()) {
        for (const auto& timer : QAbstractEventDispatcher::instance()->registeredTimers(object))
            armed.push_back({timer.interval, timer.timerType});
    }
    return armed;
}

// Lets the polling run until `condition` holds.
template<typename Condition>
bool runUntil(Condition condition) {
    return QTest::qWaitFor(condition, generousMs);
}

class DataReaderTest : public testing::Test {
protected:
    ~DataReaderTest() override {
        // No step of this test's polling may be left for the next one to see.
        client.reset();
        qDeleteAll(singleShotTimers());
    }

    QTcpSocket* socket() const { return client->findChild<QTcpSocket*>(); }

    // A run with a time constant so long that no poll comes by itself.
    void startLongRun() {
        server.answer("PARAMS?", {goodParams});
        server.answer("START", {"Ok\n"});
        client->start();
        ASSERT_THAT(armedTimers(), SizeIs(1));
    }

    // A run that polls every 10 ms.
    void startFastRun() {
        server.answer("PARAMS?", {paramsWithTimeConst("0.01")});
        server.answer("START", {"Ok\n"});
        server.answer("DATA?", {R"({"TimeConst":0.01,"Channel0":1})"});
        client->start();
        ASSERT_THAT(armedTimers(), SizeIs(1));
    }

    // Whether a step is queued for this very moment; Qt uses no timer for that. Takes the step.
    bool pollsAtOnce() {
        const auto before = server.requests().size();
        QCoreApplication::sendPostedEvents(client.get());
        return server.requests().size() == before + 1;
    }

    // Waits until that much has arrived in the socket without being asked for.
    bool waitForBytes(qint64 count) const {
        return runUntil([this, count] { return socket()->bytesAvailable() >= count; });
    }

    ScriptedServer server;
    std::unique_ptr<DataReader> client = std::make_unique<DataReader>();
    DebugLog log;
};

class DataReaderWithoutServerTest : public testing::Test {
protected:
    DataReaderWithoutServerTest() { socketWaits = {}; }

    DataReader client;
    DebugLog log;
};

// --- the object ---

static_assert(std::is_trivially_copyable_v<DataReaderParams>);
static_assert(std::is_trivially_copyable_v<DataReaderData>);
static_assert(std::is_same_v<decltype(&DataReader::tcpIpQuery),
                             QString (DataReader::*)(QString, int, bool*)>);

TEST(DataReaderMetaObjectTest, HasTwoSignalsAndOneSlotInThisOrder) {
    const QMetaObject& meta = DataReader::staticMetaObject;
    std::vector<QByteArray> methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods.push_back(meta.method(i).methodSignature());
    EXPECT_THAT(methods, ElementsAre("paramsUpdated(DataReaderParams)",
                                     "dataUpdated(DataReaderData)", "updateData()"));
}

TEST(DataReaderMetaObjectTest, OnlyTheParametersSignalNamesItsArgument) {
    const QMetaObject& meta = DataReader::staticMetaObject;
    const int first = meta.methodOffset();
    EXPECT_THAT(meta.method(first).parameterNames(), ElementsAre("params"));
    EXPECT_THAT(meta.method(first + 1).parameterNames(), ElementsAre(""));
}

TEST_F(DataReaderWithoutServerTest, ParamsAreZeroAtFirst) {
    const DataReaderParams params = client.getParams();
    EXPECT_EQ(params.timeConst, 0.0);
    EXPECT_THAT(params.ref, Each(0.0));
}

// Qt passes loopback connections by a proxy of the system anyway, so this looks at the setting.
TEST_F(DataReaderTest, SocketNeverConsultsAProxy) {
    EXPECT_EQ(socket()->proxy(), QNetworkProxy(QNetworkProxy::NoProxy));
}

// --- the connection ---

TEST_F(DataReaderWithoutServerTest, ConnectingFailsWithoutAServer) {
    EXPECT_FALSE(client.connectToServer());
    EXPECT_FALSE(client.isSocketReady());
}

TEST_F(DataReaderWithoutServerTest, ConnectingWaitsTenSecondsAtMost) {
    client.connectToServer();
    EXPECT_THAT(socketWaits.forConnections, ElementsAre(10000));
    EXPECT_THAT(socketWaits.forReplies, IsEmpty());
}

TEST_F(DataReaderWithoutServerTest, QueryGivesANullReplyAndNotOk) {
    bool ok = true;
    EXPECT_TRUE(client.tcpIpQuery("PARAMS?\n", 50, &ok).isNull());
    EXPECT_FALSE(ok);
}

TEST_F(DataReaderWithoutServerTest, UpdateParamsLogsAnEmptyReply) {
    QSignalSpy updated(&client, &DataReader::paramsUpdated);
    client.updateParams();
    EXPECT_THAT(log.messages(), ElementsAre("Invalid JSON.. \"\""));
    EXPECT_THAT(updated, IsEmpty());
}

TEST_F(DataReaderWithoutServerTest, StartFailsWithoutAWordOfItsOwn) {
    client.start();
    EXPECT_THAT(log.messages(), ElementsAre("Invalid JSON.. \"\"")); // from reading the parameters
    EXPECT_THAT(armedTimers(), IsEmpty());
}

TEST_F(DataReaderWithoutServerTest, EveryOperationSurvives) {
    client.stop();
    client.setTimeConst(1.0);
    client.setTriggerLevel(0, 0.1);
    client.updateData();
    client.closeConnection();
    EXPECT_EQ(client.getParams().timeConst, 1.0);
}

TEST_F(DataReaderTest, ConnectsOnceAndStaysConnected) {
    EXPECT_FALSE(client->isSocketReady());
    EXPECT_TRUE(client->connectToServer());
    EXPECT_TRUE(client->isSocketReady());
    EXPECT_TRUE(client->connectToServer());
    server.answer("PARAMS?", {goodParams});
    client->updateParams(); // by its reply the server has certainly accepted
    EXPECT_EQ(server.connections(), 1);
}

TEST_F(DataReaderTest, FirstRequestOpensTheConnection) {
    server.answer("PARAMS?", {goodParams});
    client->updateParams();
    EXPECT_EQ(client->getParams().timeConst, 10.0);
}

TEST_F(DataReaderTest, RequestAfterCloseConnectionOpensItAgain) {
    server.answer("PARAMS?", {goodParams});
    client->updateParams();
    client->closeConnection();
    EXPECT_FALSE(client->isSocketReady());
    client->updateParams();
    EXPECT_TRUE(client->isSocketReady());
    EXPECT_EQ(server.connections(), 2);
}

TEST_F(DataReaderTest, CloseConnectionDropsWhatCouldNotBeSentYet) {
    client->updateParams(); // by then the server has accepted
    server.setReading(false);
    socket()->write(QByteArray(64 * 1024 * 1024, 'x'));
    client->closeConnection();
    EXPECT_EQ(socket()->state(), QAbstractSocket::UnconnectedState);
}

TEST_F(DataReaderTest, CloseConnectionDropsWhatAServerLeftBehindThatHungUp) {
    server.answer("PARAMS?", {goodParams});
    client->updateParams();
    server.send("left behind");
    ASSERT_TRUE(waitForBytes(11));
    server.hangUp();
    ASSERT_TRUE(runUntil([this] { return !client->isSocketReady(); }));
    client->closeConnection();
    EXPECT_FALSE(socket()->isOpen());
    EXPECT_EQ(socket()->bytesAvailable(), 0);
}

TEST_F(DataReaderTest, RequestAfterTheServerHungUpOpensTheConnectionAgain) {
    server.answer("PARAMS?", {goodParams});
    client->updateParams();
    server.hangUp();
    ASSERT_TRUE(runUntil([this] { return !client->isSocketReady(); }));
    QSignalSpy updated(client.get(), &DataReader::paramsUpdated);
    client->updateParams();
    EXPECT_THAT(updated, SizeIs(1));
    EXPECT_EQ(server.connections(), 2);
}

TEST_F(DataReaderTest, ClosingSocketCountsAsReadyAndTakesTheRequestWithoutReconnecting) {
    server.answer("PARAMS?", {goodParams});
    client->updateParams();
    // More than the network takes while the server does not read keeps the connection closing.
    server.setReading(false);
    socket()->write(QByteArray(64 * 1024 * 1024, 'x') + '\n');
    socket()->disconnectFromHost();
    ASSERT_EQ(socket()->state(), QAbstractSocket::ClosingState);
    EXPECT_TRUE(client->isSocketReady());
    EXPECT_FALSE(client->connectToServer());

    bool ok = true;
    EXPECT_EQ(client->tcpIpQuery("DATA?\n", 50, &ok), QString());
    EXPECT_FALSE(ok);

    server.setReading(true);
    ASSERT_TRUE(runUntil([this] { return !client->isSocketReady(); }));
    EXPECT_EQ(server.waitForRequests(3).back(), "DATA?\n");
    EXPECT_EQ(server.connections(), 1);
}

// The client itself asks for an address and no name, so only somebody else's lookup can be seen.
TEST_F(DataReaderWithoutServerTest, SocketThatLooksUpANameCountsAsReady) {
    auto* const socket = client.findChild<QTcpSocket*>();
    socket->connectToHost(QStringLiteral("localhost"), 9800);
    ASSERT_EQ(socket->state(), QAbstractSocket::HostLookupState);
    EXPECT_TRUE(client.isSocketReady());
}

// --- one request and its reply ---

TEST_F(DataReaderTest, QueryReturnsTheReplyAndOk) {
    server.answer("PARAMS?", {"some text\n"});
    bool ok = false;
    EXPECT_EQ(client->tcpIpQuery("PARAMS?\n", generousMs, &ok), "some text\n");
    EXPECT_TRUE(ok);
    EXPECT_THAT(server.requests(), ElementsAre("PARAMS?\n"));
}

TEST_F(DataReaderTest, QueryWaitsAsLongAsItIsToldForAReplyThatNeverComes) {
    bool ok = true;
    EXPECT_EQ(client->tcpIpQuery("PARAMS?\n", 123, &ok), "");
    EXPECT_FALSE(ok);
    EXPECT_THAT(socketWaits.forReplies, ElementsAre(123));
}

TEST_F(DataReaderTest, EveryRequestWaitsFiftyMillisecondsForItsReply) {
    startLongRun(); // PARAMS?, START
    client->updateData();
    client->setTriggerLevel(0, 0.1); // DAC, PARAMS?
    client->setTimeConst(1);
    client->stop();
    EXPECT_THAT(server.requests(), SizeIs(7));
    EXPECT_THAT(socketWaits.forReplies, AllOf(SizeIs(7), Each(50)));
    EXPECT_THAT(socketWaits.forConnections, ElementsAre(10000));
}

TEST_F(DataReaderTest, OnlyTheStopBehindATimeConstantIsNotWaitedFor) {
    client->setTimeConst(1);
    EXPECT_THAT(server.waitForRequests(2), ElementsAre("START 1\n", "STOP\n"));
    EXPECT_THAT(socketWaits.forReplies, ElementsAre(50, 0));
}

TEST_F(DataReaderTest, QueryDecodesUtf8) {
    server.answer("PARAMS?", {"\xC2\xB5s"});
    EXPECT_EQ(client->tcpIpQuery("PARAMS?\n", generousMs, nullptr), QStringLiteral("µs"));
}

TEST_F(DataReaderTest, QueryCutsTheReplyAtANulByte) {
    server.answer("PARAMS?", {QByteArray("head\0tail", 9)});
    EXPECT_EQ(client->tcpIpQuery("PARAMS?\n", generousMs, nullptr), "head");
}

TEST_F(DataReaderTest, LateReplyIsReturnedAtTheHeadOfTheNextOne) {
    server.answer("START", {"", "second\n"});
    EXPECT_EQ(client->tcpIpQuery("START 1\n", 50, nullptr), "");
    server.send("first\n");
    ASSERT_TRUE(waitForBytes(6));
    EXPECT_EQ(client->tcpIpQuery("START 2\n", generousMs, nullptr), "first\nsecond\n");
}

TEST_F(DataReaderTest, HugeReplyArrivesWholeAndInOrderOverSeveralRequests) {
    const QByteArray huge = QByteArray(1024 * 1024 - 1, 'h') + '\n';
    server.answer("PARAMS?", {huge, "."});
    QString all;
    while (all.size() < huge.size()) {
        const QString piece = client->tcpIpQuery("PARAMS?\n", generousMs, nullptr);
        ASSERT_FALSE(piece.isEmpty());
        all += piece;
    }
    EXPECT_EQ(all.left(huge.size()), QString::fromLatin1(huge));
    EXPECT_EQ(all.mid(huge.size()).remove('.'), "");
}

// --- parameters ---

TEST_F(DataReaderTest, UpdateParamsReadsEveryMemberAndEmits) {
    server.answer("PARAMS?", {goodParams});
    QSignalSpy updated(client.get(), &DataReader::paramsUpdated);
    client->updateParams();
    ASSERT_THAT(updated, SizeIs(1));
    const auto emitted = updated[0][0].value<DataReaderParams>();
    EXPECT_EQ(emitted.timeConst, 10.0);
    EXPECT_THAT(emitted.ref, ElementsAre(0.05, 0.15, -0.25, 1.5));
    EXPECT_THAT(client->getParams().ref, ElementsAre(0.05, 0.15, -0.25, 1.5));
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(DataReaderTest, MembersThatAreMissingOrNoNumbersReadAsZero) {
    server.answer("PARAMS?", {goodParams, R"({"TimeConst":"1","Ref0":null,"Ref1":7,"Ref2":[1]})"});
    client->updateParams();
    client->updateParams();
    EXPECT_EQ(client->getParams().timeConst, 0.0);
    EXPECT_THAT(client->getParams().ref, ElementsAre(0.0, 7.0, 0.0, 0.0));
}

TEST_F(DataReaderTest, EmptyObjectIsStillAnObject) {
    server.answer("PARAMS?", {"{}"});
    QSignalSpy updated(client.get(), &DataReader::paramsUpdated);
    client->updateParams();
    EXPECT_THAT(updated, SizeIs(1));
}

struct BadReply {
    const char* name;
    QByteArray reply;
    QString logged;
};
void PrintTo(const BadReply& bad, std::ostream* out) {
    *out << bad.name;
}

class DataReaderBadReplyTest : public DataReaderTest,
                               public testing::WithParamInterface<BadReply> {};

TEST_P(DataReaderBadReplyTest, UpdateParamsKeepsTheOldValuesAndLogs) {
    server.answer("PARAMS?", {goodParams, GetParam().reply});
    client->updateParams();
    QSignalSpy updated(client.get(), &DataReader::paramsUpdated);
    client->updateParams();
    EXPECT_THAT(updated, IsEmpty());
    EXPECT_EQ(client->getParams().timeConst, 10.0);
    EXPECT_THAT(client->getParams().ref, ElementsAre(0.05, 0.15, -0.25, 1.5));
    EXPECT_THAT(log.messages(), ElementsAre(GetParam().logged));
}

TEST_P(DataReaderBadReplyTest, UpdateDataKeepsTheTimeConstantLogsAndPollsOn) {
    startLongRun();
    const QStringList logged = log.messages();
    server.answer("DATA?", {GetParam().reply});
    QSignalSpy updated(client.get(), &DataReader::dataUpdated);
    client->updateData();
    EXPECT_THAT(updated, IsEmpty());
    EXPECT_EQ(client->getParams().timeConst, 10.0);
    EXPECT_EQ(log.messages(), logged + QStringList(GetParam().logged));
    EXPECT_THAT(armedTimers(), SizeIs(2)); // the run's first and this one
}

INSTANTIATE_TEST_SUITE_P(
    , DataReaderBadReplyTest,
    testing::Values(BadReply{"Empty", "", R"(Invalid JSON.. "")"},
                    BadReply{"Cut", R"({"TimeConst":3,"Ref)",
                             R"(Invalid JSON.. "{\"TimeConst\":3,\"Ref")"},
                    BadReply{"NotJson", "Error\n", R"(Invalid JSON.. "Error\n")"},
                    BadReply{"Number", "5", R"(Invalid JSON.. "5")"},
                    BadReply{"Array", "[1,2]", "Document is not an object"},
                    BadReply{"NulByteInside", QByteArray("{\"TimeConst\"\0:3}", 16),
                             R"(Invalid JSON.. "{\"TimeConst\"")"},
                    BadReply{"NulByteFirst", QByteArray("\0{}", 3), R"(Invalid JSON.. "")"},
                    BadReply{"Twice", "{}{}", R"(Invalid JSON.. "{}{}")"}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(DataReaderTest, UpdateParamsAfterALateReplyFailsOnceAndThenRecovers) {
    server.answer("PARAMS?", {"", goodParams});
    client->updateParams();
    server.send(goodParams);
    ASSERT_TRUE(waitForBytes(goodParams.size()));
    QSignalSpy updated(client.get(), &DataReader::paramsUpdated);
    client->updateParams(); // the late reply and the new one are no JSON together
    EXPECT_THAT(updated, IsEmpty());
    client->updateParams();
    EXPECT_THAT(updated, SizeIs(1));
}

// --- start and stop ---

TEST_F(DataReaderTest, StartSendsTheTimeConstantOfTheServer) {
    server.answer("PARAMS?", {paramsWithTimeConst("0.5")});
    server.answer("START", {"Ok\n"});
    client->start();
    EXPECT_THAT(server.requests(), ElementsAre("PARAMS?\n", "START 0.5\n"));
    EXPECT_THAT(log.messages(), ElementsAre("start 500"));
}

TEST_F(DataReaderTest, StartFindsOkAnywhereInTheReply) {
    server.answer("PARAMS?", {goodParams});
    server.answer("START", {"run 7: Ok, counting"});
    client->start();
    EXPECT_THAT(armedTimers(), SizeIs(1));
}

TEST_F(DataReaderTest, StartSucceedsOnTheSecondAttempt) {
    server.answer("PARAMS?", {goodParams});
    server.answer("START", {"Error", "Ok\n"});
    client->start();
    EXPECT_THAT(server.requests(), ElementsAre("PARAMS?\n", "START 10\n", "START 10\n"));
    EXPECT_THAT(log.messages(), ElementsAre("start 10000"));
    EXPECT_THAT(armedTimers(), SizeIs(1));
}

TEST_F(DataReaderTest, TwoRepliesWithoutOkLeaveTheClientStoppedWithNothingLogged) {
    server.answer("PARAMS?", {goodParams});
    server.answer("START", {"Error", "OK\n", "Ok\n"}); // capitals do not count
    client->start();
    EXPECT_THAT(server.requests(), ElementsAre("PARAMS?\n", "START 10\n", "START 10\n"));
    EXPECT_THAT(log.messages(), IsEmpty());
    EXPECT_THAT(armedTimers(), IsEmpty());
    client->updateData();
    EXPECT_THAT(server.requests(), Not(Contains("DATA?\n")));
}

TEST_F(DataReaderTest, StopLogsAndSendsStop) {
    startLongRun();
    client->stop();
    EXPECT_EQ(log.messages().last(), "stop");
    EXPECT_THAT(server.waitForRequests(3), ElementsAre("PARAMS?\n", "START 10\n", "STOP\n"));
}

TEST_F(DataReaderTest, StopLeavesTheArmedStepWhichThenEndsTheChain) {
    startFastRun();
    client->stop();
    EXPECT_THAT(armedTimers(), SizeIs(1));
    EXPECT_TRUE(runUntil([] { return armedTimers().empty(); }));
    EXPECT_THAT(server.waitForRequests(3), ElementsAre("PARAMS?\n", "START 0.01\n", "STOP\n"));
}

// --- polling ---

TEST_F(DataReaderTest, UpdateDataReadsEveryMemberAndEmits) {
    startLongRun();
    server.answer("DATA?", {goodData});
    QSignalSpy updated(client.get(), &DataReader::dataUpdated);
    client->updateData();
    ASSERT_THAT(updated, SizeIs(1));
    EXPECT_THAT(updated[0][0].value<DataReaderData>().channel,
                ElementsAre(4000.0, 300.5, 20.0, 1e6));
    EXPECT_THAT(client->getParams().ref, ElementsAre(0.05, 0.15, -0.25, 1.5));
}

TEST_F(DataReaderTest, RunPollsAgainAndAgain) {
    startFastRun();
    QSignalSpy updated(client.get(), &DataReader::dataUpdated);
    EXPECT_TRUE(runUntil([&] { return updated.size() >= 5; }));
    EXPECT_THAT(armedTimers(), ElementsAre(ArmedTimer{10, Qt::PreciseTimer}));
}

TEST_F(DataReaderTest, PollsTakeTheTimeConstantFromTheDataReply) {
    startLongRun();
    server.answer("DATA?", {R"({"TimeConst":0.25})"});
    client->updateData();
    EXPECT_EQ(client->getParams().timeConst, 0.25);
    EXPECT_THAT(armedTimers(), Contains(ArmedTimer{250, Qt::PreciseTimer}));
}

TEST_F(DataReaderTest, DataReplyWithoutTimeConstSetsItToZeroAndPollsAtOnce) {
    startLongRun();
    server.answer("DATA?", {R"({"Channel0":1})"});
    client->updateData();
    EXPECT_EQ(client->getParams().timeConst, 0.0);
    EXPECT_TRUE(pollsAtOnce());
}

TEST_F(DataReaderTest, TwoSecondsArmACoarseTimerOfTwoThousandMilliseconds) {
    server.answer("PARAMS?", {paramsWithTimeConst("2")});
    server.answer("START", {"Ok\n"});
    client->start();
    EXPECT_THAT(armedTimers(), ElementsAre(ArmedTimer{2000, Qt::CoarseTimer}));
}

TEST_F(DataReaderTest, JustUnderTwoSecondsArmAPreciseTimerOfWholeMilliseconds) {
    server.answer("PARAMS?", {paramsWithTimeConst("1.9999")});
    server.answer("START", {"Ok\n"});
    client->start();
    EXPECT_THAT(armedTimers(), ElementsAre(ArmedTimer{1999, Qt::PreciseTimer}));
}

TEST_F(DataReaderTest, PollsFollowTheSameTimerRule) {
    startLongRun();
    server.answer("DATA?", {R"({"TimeConst":2})", R"({"TimeConst":1.9999})"});
    client->updateData();
    client->updateData();
    EXPECT_THAT(armedTimers(), UnorderedElementsAre(ArmedTimer{10000, Qt::CoarseTimer},
                                                    ArmedTimer{2000, Qt::CoarseTimer},
                                                    ArmedTimer{1999, Qt::PreciseTimer}));
}

TEST_F(DataReaderTest, OnlyTheFirstFivePollsInARowWithoutATimeConstantComeAtOnce) {
    startLongRun();
    server.answer("DATA?", {"{}", "{}", "{}", "{}", "{}", "{}", R"({"TimeConst":0.25})", "{}"});
    client->updateData();
    for (int poll = 0; poll < 5; ++poll) {
        ASSERT_TRUE(pollsAtOnce());
    }
    EXPECT_FALSE(pollsAtOnce());
    EXPECT_THAT(armedTimers(), Contains(ArmedTimer{10, Qt::PreciseTimer}));
    client->updateData(); // reports 0.25, so that the next 0 is a first one again
    client->updateData();
    EXPECT_TRUE(pollsAtOnce());
}

TEST_F(DataReaderTest, EveryStartWithoutATimeConstantPollsAtOnce) {
    server.answer("PARAMS?", {"{}"});
    server.answer("START", {"Ok"});
    for (int run = 0; run < 2; ++run) {
        client->start();
        EXPECT_EQ(log.messages().constLast(), "start 0");
        EXPECT_TRUE(pollsAtOnce());
        client->stop();
        EXPECT_FALSE(pollsAtOnce()); // the step that was armed finds the run ended
    }
}

TEST_F(DataReaderTest, OtherTimersGoOnWhileTheServerReportsNoTimeConstant) {
    server.answer("PARAMS?", {"{}"});
    server.answer("START", {"Ok"});
    server.answer("DATA?", {"{}"});
    int otherCalls = 0;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&otherCalls] { ++otherCalls; });
    other.start(1);
    QSignalSpy updated(client.get(), &DataReader::dataUpdated);
    client->start();
    EXPECT_TRUE(runUntil([&] { return updated.size() >= 5 && otherCalls >= 5; }));
}

// Qt refuses to arm such an interval, in words of its own.
TEST_F(DataReaderTest, NegativeTimeConstantIsKeptAndEndsThePolling) {
    server.answer("PARAMS?", {paramsWithTimeConst("-1")});
    server.answer("START", {"Ok\n"});
    client->start();
    EXPECT_THAT(server.requests(), ElementsAre("PARAMS?\n", "START -1\n"));
    ASSERT_THAT(log.messages(), SizeIs(2));
    EXPECT_EQ(log.messages()[0], "start -1000");
    EXPECT_TRUE(log.messages()[1].contains("negative"));
    EXPECT_THAT(armedTimers(), IsEmpty());
    EXPECT_FALSE(pollsAtOnce());
}

TEST_F(DataReaderTest, NegativeTimeConstantInADataReplyEndsThePolling) {
    startLongRun();
    server.answer("DATA?", {R"({"TimeConst":-0.5})"});
    client->updateData();
    EXPECT_THAT(armedTimers(), SizeIs(1)); // the run's first
    EXPECT_FALSE(pollsAtOnce());
}

struct Interval {
    const char* name;
    const char* timeConst;
    int ms;
};
void PrintTo(const Interval& interval, std::ostream* out) {
    *out << interval.name;
}

class DataReaderIntervalTest : public DataReaderTest,
                               public testing::WithParamInterface<Interval> {};

TEST_P(DataReaderIntervalTest, IsTheTimeConstantInWholeMilliseconds) {
    server.answer("PARAMS?", {paramsWithTimeConst(GetParam().timeConst)});
    server.answer("START", {"Ok\n"});
    client->start();
    EXPECT_EQ(log.messages()[0], QStringLiteral("start %1").arg(GetParam().ms));
}

INSTANTIATE_TEST_SUITE_P(
    , DataReaderIntervalTest,
    testing::Values(Interval{"Seconds", "2", 2000}, Interval{"FractionIsCut", "1.9999", 1999},
                    Interval{"Zero", "0", 0}, Interval{"LessThanAMillisecond", "0.0009", 0},
                    Interval{"LittleBelowZero", "-0.0009", 0},
                    Interval{"FractionBelowZeroIsCut", "-1.9999", -1999},
                    Interval{"TooLarge", "1e300", std::numeric_limits<int>::max()},
                    Interval{"TooSmall", "-1e300", std::numeric_limits<int>::min()},
                    Interval{"LargeEnoughToOverflow", "1e307", std::numeric_limits<int>::max()}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(DataReaderTest, TimeConstantThatIsNoNumberPollsAtOnce) {
    client->setTimeConst(std::numeric_limits<double>::quiet_NaN());
    server.answer("START", {"Ok\n"});
    client->start(); // the server does not tell its parameters
    EXPECT_EQ(log.messages().constLast(), "start 0");
    EXPECT_TRUE(pollsAtOnce());
}

TEST_F(DataReaderTest, TimeConstantTooLongForATimerHoldsNothingUp) {
    server.answer("PARAMS?", {paramsWithTimeConst("1e300")});
    server.answer("START", {"Ok\n"});
    client->start();
    int otherCalls = 0;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&otherCalls] { ++otherCalls; });
    other.start(10);
    EXPECT_TRUE(runUntil([&] { return otherCalls >= 3; }));
    EXPECT_THAT(server.requests(), Not(Contains("DATA?\n")));
}

TEST_F(DataReaderTest, UpdateDataSendsNothingWhileNoRunIsActive) {
    client->updateData();
    server.answer("PARAMS?", {goodParams});
    client->updateParams();
    EXPECT_THAT(server.requests(), ElementsAre("PARAMS?\n"));
    EXPECT_THAT(armedTimers(), IsEmpty());
}

TEST_F(DataReaderTest, StartDuringARunAddsASecondPollingChain) {
    startFastRun();
    client->start();
    EXPECT_THAT(armedTimers(), SizeIs(2));
    QSignalSpy updated(client.get(), &DataReader::dataUpdated);
    ASSERT_TRUE(runUntil([&] { return updated.size() >= 6; }));
    EXPECT_THAT(armedTimers(), SizeIs(2));
}

TEST_F(DataReaderTest, StartAfterAStopWhoseStepIsStillPendingAddsASecondPollingChain) {
    startFastRun();
    client->stop();
    client->start();
    EXPECT_THAT(armedTimers(), SizeIs(2));
    QSignalSpy updated(client.get(), &DataReader::dataUpdated);
    ASSERT_TRUE(runUntil([&] { return updated.size() >= 6; }));
    EXPECT_THAT(armedTimers(), SizeIs(2));
}

TEST_F(DataReaderTest, RunGoesOnOverANewConnectionWhenTheServerHangsUp) {
    startFastRun();
    QSignalSpy updated(client.get(), &DataReader::dataUpdated);
    ASSERT_TRUE(runUntil([&] { return !updated.isEmpty(); }));
    server.hangUp();
    const int before = updated.size();
    EXPECT_TRUE(runUntil([&] { return updated.size() >= before + 3; }));
    EXPECT_EQ(server.connections(), 2);
}

TEST_F(DataReaderTest, RunGoesOnAfterAHugeReply) {
    startFastRun();
    const QByteArray good = R"({"TimeConst":0.01,"Channel0":77})";
    server.answer("DATA?", {QByteArray(1024 * 1024, ' ') + good, good});
    QSignalSpy updated(client.get(), &DataReader::dataUpdated);
    EXPECT_TRUE(runUntil([&] { return updated.size() >= 3; }));
    EXPECT_EQ(updated.last()[0].value<DataReaderData>().channel[0], 77.0);
}

// --- settings ---

TEST_F(DataReaderTest, TimeConstantAboveTenSecondsIsSentAsTen) {
    client->setTimeConst(20);
    EXPECT_THAT(server.waitForRequests(2), ElementsAre("START 10\n", "STOP\n"));
    EXPECT_EQ(client->getParams().timeConst, 10.0);
}

TEST_F(DataReaderTest, TimeConstantBelowTenMillisecondsIsSentAsTenMilliseconds) {
    client->setTimeConst(0.001);
    EXPECT_THAT(server.waitForRequests(2), ElementsAre("START 0.01\n", "STOP\n"));
    EXPECT_EQ(client->getParams().timeConst, 0.01);
}

TEST_F(DataReaderTest, TimeConstantWithinTheBoundsIsSentAsItIs) {
    client->setTimeConst(0.25);
    EXPECT_THAT(server.waitForRequests(2), ElementsAre("START 0.25\n", "STOP\n"));
    EXPECT_EQ(client->getParams().timeConst, 0.25);
}

TEST_F(DataReaderTest, SettingTheTimeConstantBeforeTheFirstRunStopsTheServerAtOnce) {
    QSignalSpy updated(client.get(), &DataReader::paramsUpdated);
    client->setTimeConst(1);
    EXPECT_THAT(server.waitForRequests(2), ElementsAre("START 1\n", "STOP\n"));
    EXPECT_THAT(updated, IsEmpty());
}

TEST_F(DataReaderTest, SettingTheTimeConstantDuringARunLeavesItGoing) {
    startLongRun();
    client->setTimeConst(0.5);
    client->updateParams(); // what it sends comes after anything that setTimeConst sent
    EXPECT_THAT(server.requests(),
                ElementsAre("PARAMS?\n", "START 10\n", "START 0.5\n", "PARAMS?\n"));
    EXPECT_THAT(armedTimers(), SizeIs(1));
}

TEST_F(DataReaderTest, TriggerLevelIsSentInVoltsAndTheParametersReadBack) {
    server.answer("PARAMS?", {goodParams});
    QSignalSpy updated(client.get(), &DataReader::paramsUpdated);
    client->setTriggerLevel(2, -0.15);
    EXPECT_THAT(server.requests(), ElementsAre("DAC 2,-0.15\n", "PARAMS?\n"));
    EXPECT_THAT(updated, SizeIs(1));
    EXPECT_EQ(client->getParams().ref[2], -0.25); // as the server reports it, not as it was sent
    EXPECT_THAT(log.messages(), ElementsAre("2 -0.15"));
}

TEST_F(DataReaderTest, TriggerLevelIsSentWithSixSignificantDigits) {
    server.answer("PARAMS?", {goodParams});
    client->setTriggerLevel(0, 1234567);
    client->setTriggerLevel(3, 0.123456789);
    EXPECT_THAT(server.requests(),
                ElementsAre("DAC 0,1.23457e+06\n", "PARAMS?\n", "DAC 3,0.123457\n", "PARAMS?\n"));
}

TEST_F(DataReaderTest, TriggerLevelOfAChannelThatIsNotThereSendsNothing) {
    QSignalSpy updated(client.get(), &DataReader::paramsUpdated);
    client->setTriggerLevel(4, 0.1);
    client->setTriggerLevel(-1, 0.1);
    EXPECT_THAT(updated, IsEmpty());
    EXPECT_THAT(log.messages(), IsEmpty());
    server.answer("PARAMS?", {goodParams});
    client->updateParams();
    EXPECT_THAT(server.requests(), ElementsAre("PARAMS?\n"));
}

} // namespace
