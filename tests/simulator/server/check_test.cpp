#include "boundprocess.h"
#include "measurementserver.h"
#include "patience.h"

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using server::MeasurementServer;
using testing::HasSubstr;
using testing::Not;

struct Outcome {
    int status = -1;
    std::string report;
    std::string errors;
};

// Runs the program while this thread answers it.
Outcome check(const QStringList& arguments) {
    panel::BoundProcess process;
    process.start(CHECK_PROGRAM, arguments);
    EXPECT_TRUE(QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; },
                                generousMs));
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

class ServerCheckTest : public testing::Test {
protected:
    ServerCheckTest() { EXPECT_TRUE(server.listen(0)); }

    QString place() const { return "127.0.0.1:" + QString::number(server.port()); }

    // With so long a wait that no busy machine is late.
    Outcome checked(const QStringList& only, const char* wait = "1000") {
        QStringList arguments{"--wait", wait};
        for (const QString& name : only)
            arguments += {"--only", name};
        return check(arguments + QStringList(place()));
    }

    MeasurementServer server{1};
};

TEST_F(ServerCheckTest, PassesOnTheSimulatedServerAndLeavesItAsItWas) {
    server.setParams({0.125, {0.1, 0.2, 0.3, 0.4}});
    const Outcome outcome = checked({}, "2000");
    EXPECT_EQ(outcome.status, 0) << outcome.report;
    EXPECT_THAT(outcome.report, HasSubstr(" passed, 0 failed, 0 to think about"));
    EXPECT_EQ(server.params().timeConst, 0.125);
    EXPECT_EQ(server.params().ref[3], 0.4);
    EXPECT_FALSE(server.isRunning());
}

TEST_F(ServerCheckTest, SaysWhatIsWrongWhatIsAskedForAndWhatThePanelDoes) {
    server.setFault(server::Fault::NotObject);
    const Outcome outcome = checked({"params"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.report, HasSubstr("FAIL   params"));
    EXPECT_THAT(outcome.report, HasSubstr("which is not an object"));
    EXPECT_THAT(outcome.report, HasSubstr("asked for: PARAMS?"));
    EXPECT_THAT(outcome.report, HasSubstr("the panel: "));
}

TEST_F(ServerCheckTest, NobodyThere) {
    const QString gone = place();
    server.close();
    const Outcome outcome = check({gone});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.report, HasSubstr("FAIL   connect"));
    EXPECT_THAT(outcome.report, Not(HasSubstr("in-time"))) << "nothing else is tried";
}

struct Deviation {
    const char* fault;
    const char* check; // that finds it
    const char* wait;
};

class ServerCheckFaultTest : public ServerCheckTest,
                             public testing::WithParamInterface<Deviation> {};

TEST_P(ServerCheckFaultTest, IsFound) {
    QString error;
    const auto rule = server::parseFault(QString(GetParam().fault).split(' '), &error);
    ASSERT_TRUE(rule) << error.toStdString();
    server.setFault(*rule);
    const Outcome outcome = checked({GetParam().check}, GetParam().wait);
    EXPECT_EQ(outcome.status, 1) << outcome.report;
    EXPECT_THAT(outcome.report, HasSubstr(std::string("FAIL   ") + GetParam().check));
}

INSTANTIATE_TEST_SUITE_P(
    , ServerCheckFaultTest,
    testing::Values(Deviation{"silent", "in-time", "50"}, Deviation{"late 100ms", "in-time", "50"},
                    Deviation{"late 100ms for DATA?", "always-in-time", "50"},
                    Deviation{"cut", "params", "500"}, Deviation{"cut for DATA?", "data", "500"},
                    Deviation{"not-json", "params", "500"}, Deviation{"not-object", "data", "500"},
                    Deviation{"missing-members", "params", "500"},
                    Deviation{"missing-members for DATA?", "run", "500"},
                    Deviation{"nul-byte", "no-nul-bytes", "500"},
                    Deviation{"huge", "one-piece", "500"},
                    Deviation{"close-connection", "params", "500"},
                    Deviation{"close-connection 2", "requests-in-bursts", "500"},
                    Deviation{"pieces", "one-piece", "500"}, Deviation{"hang", "in-time", "50"},
                    Deviation{"garbage", "stop", "500"}, Deviation{"garbage", "params", "500"},
                    Deviation{"silent for START", "start", "50"},
                    Deviation{"cut for START", "start", "500"}),
    [](const auto& tested) {
        return QString(tested.param.fault).replace(QRegExp("[^a-z0-9]"), "_").toStdString() + "_" +
               QString(tested.param.check).replace('-', '_').toStdString();
    });

// A server that does something else than it should, rather than something wrong with its replies.
TEST_F(ServerCheckTest, AnswersToStopAreFound) {
    server.setAnswerEverything(true);
    EXPECT_THAT(checked({"stop"}, "500").report, HasSubstr("FAIL   stop"));
    EXPECT_EQ(checked({"dac"}, "500").status, 0) << "an answer to DAC does no harm";
}

TEST_F(ServerCheckTest, LevelsThatDoNotComeBackAreFound) {
    server.setReply("PARAMS?",
                    R"({"TimeConst":0.5,"Ref0":0.05,"Ref1":0.15,"Ref2":0.25,"Ref3":0.35})"
                    "\n");
    EXPECT_EQ(checked({"dac"}, "500").status, 1);
    EXPECT_EQ(checked({"start"}, "500").status, 1);
    EXPECT_EQ(checked({"start-and-stop"}, "500").status, 1);
    EXPECT_EQ(checked({"reconnect"}, "500").status, 1);
}

TEST_F(ServerCheckTest, GreetingsAreFound) {
    QTcpServer greeter;
    ASSERT_TRUE(greeter.listen(QHostAddress::LocalHost));
    QObject::connect(&greeter, &QTcpServer::newConnection, &greeter,
                     [&greeter] { greeter.nextPendingConnection()->write("Hello\n"); });
    const Outcome outcome = check(
        {"--only", "silent-on-connection", "127.0.0.1:" + QString::number(greeter.serverPort())});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.report, HasSubstr("it sent \"Hello"));
}

TEST(ServerCheckProgramTest, HelpNamesEveryCheck) {
    const Outcome outcome = check({"--help"});
    EXPECT_EQ(outcome.status, 0);
    for (const char* word : {"HOST:PORT", "--wait", "--only", "half-close", "requests-in-pieces"})
        EXPECT_THAT(outcome.report, HasSubstr(word));
}

TEST(ServerCheckProgramTest, WrongUsageEndsItWithStatusTwo) {
    for (const QStringList& arguments :
         {QStringList{"--nonsense"}, QStringList{"--wait", "x"}, QStringList{"--only", "x"},
          QStringList{"nowhere"}, QStringList{"a:1", "b:2"}, QStringList{"a:0"}})
        EXPECT_EQ(check(arguments).status, 2) << arguments.join(' ').toStdString();
}

} // namespace
