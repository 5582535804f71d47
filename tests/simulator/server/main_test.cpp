#include "boundprocess.h"
#include "measurementserver.h"
#include "patience.h"

#include <QHostAddress>
#include <QTcpSocket>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

// The program, running; killed at the end.
class Program {
public:
    explicit Program(const QStringList& arguments) { m_process.start(PROGRAM, arguments); }
    ~Program() {
        m_process.kill();
        m_process.waitForFinished(generousMs);
    }

    // The next line on standard output.
    std::string line() {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(generousMs)) {
        }
        return m_process.readLine().trimmed().toStdString();
    }
    std::string errorLine() {
        m_process.setReadChannel(QProcess::StandardError);
        return line();
    }
    int exitStatus() {
        EXPECT_TRUE(m_process.waitForFinished(generousMs));
        return m_process.exitCode();
    }
    std::string output() { return m_process.readAllStandardOutput().toStdString(); }
    std::string errors() { return m_process.readAllStandardError().toStdString(); }

private:
    panel::BoundProcess m_process;
};

TEST(MeasurementServerProgramTest, HelpNamesCommandsAndOptions) {
    Program program({"--help"});
    EXPECT_EQ(program.exitStatus(), 0);
    const std::string help = program.output();
    for (const char* word : {"PARAMS?", "--port", "--seed", "--fault", "missing-members",
                             "--answer-everything", "--verbose", "Exit status"})
        EXPECT_THAT(help, HasSubstr(word));
}

TEST(MeasurementServerProgramTest, TellsItsVersion) {
    Program program({"--version"});
    EXPECT_EQ(program.exitStatus(), 0);
    EXPECT_EQ(program.output(), "measurementserver " VERSION "\n");
}

TEST(MeasurementServerProgramTest, PrintsWhereItListensAndEachRequest) {
    Program program({"--port", "0", "--verbose"});
    const QString listening = QString::fromStdString(program.line());
    ASSERT_THAT(listening.toStdString(), HasSubstr("Listening on 127.0.0.1:"));
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, listening.section(':', 1).toUShort());
    ASSERT_TRUE(client.waitForConnected(generousMs));
    client.write("START 1\n");
    ASSERT_TRUE(client.waitForReadyRead(generousMs));
    EXPECT_EQ(client.readAll(), "Ok\n");
    EXPECT_EQ(program.line(), "connections: 1");
    EXPECT_EQ(program.line(), "request: START 1");
}

TEST(MeasurementServerProgramTest, TakenPortEndsItWithAClearError) {
    server::MeasurementServer holder(1);
    ASSERT_TRUE(holder.listen(0));
    const QString port = QString::number(holder.port());
    Program program({"--port", port});
    EXPECT_EQ(program.exitStatus(), 1);
    const std::string errors = program.errors();
    EXPECT_THAT(errors, HasSubstr("127.0.0.1:" + port.toStdString()));
    EXPECT_THAT(errors, HasSubstr("--port"));
}

class MeasurementServerProgramUsageTest : public testing::TestWithParam<QStringList> {};

TEST_P(MeasurementServerProgramUsageTest, WrongUsageEndsItWithStatusTwo) {
    Program program(GetParam());
    EXPECT_EQ(program.exitStatus(), 2);
    EXPECT_THAT(program.errors(), HasSubstr("not " + GetParam().last().toStdString()));
}

INSTANTIATE_TEST_SUITE_P(, MeasurementServerProgramUsageTest,
                         testing::Values(QStringList{"--port", "65536"},
                                         QStringList{"--seed", "many"}));

TEST(MeasurementServerProgramTest, WrongOptionsAndFaultsEndItWithStatusTwo) {
    for (const QStringList& arguments : {QStringList{"--nonsense"}, QStringList{"--fault", "all"},
                                         QStringList{"--fault", "late 5"}}) {
        Program program(arguments);
        EXPECT_EQ(program.exitStatus(), 2);
        EXPECT_THAT(program.errors(), HasSubstr(arguments.constFirst().mid(2).toStdString()));
    }
}

TEST(MeasurementServerProgramTest, SaysWhenItsFaultStrikes) {
    Program program({"--port", "0", "--fault", "silent for DATA?"});
    const QString listening = QString::fromStdString(program.line());
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, listening.section(':', 1).toUShort());
    ASSERT_TRUE(client.waitForConnected(generousMs));
    client.write("DATA?\nSTART 1\n");
    ASSERT_TRUE(client.waitForReadyRead(generousMs));
    EXPECT_EQ(client.readAll(), "Ok\n");
    EXPECT_EQ(program.errorLine(), "measurementserver: fault silent strikes \"DATA?\"");
}

} // namespace
