// Runs the program itself, with shell scripts in the application's place: how sessions end.

#include "boundprocess.h"
#include "patience.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHostAddress>
#include <QImage>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <regex>
#include <sys/types.h>

namespace {

struct Outcome {
    int status = -1;
    std::string out;
    std::string error;
};

class Panelsim : public testing::Test {
protected:
    QString write(const char* name, const QByteArray& content) const {
        QString path = m_directory.filePath(QString::fromLatin1(name));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    // A program in the application's place.
    QString application(const QByteArray& commands) const {
        QString path = write("application", "#!/bin/sh\n" + commands + '\n');
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }

    Outcome run(const QStringList& options) const {
        panel::BoundProcess process;
        start(process, options);
        return end(process);
    }

    // Plays a script, without server unless `options` say otherwise.
    Outcome play(const QByteArray& script, const QByteArray& commands,
                 const QStringList& options = {QStringLiteral("--no-server")}) const {
        return run(QStringList{"--script", write("session.txt", script), "--app",
                               application(commands), "--screenshots", path("shots")} +
                   options);
    }

    void start(QProcess& process, const QStringList& options) const {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("TMPDIR"), m_directory.path());
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_directory.path());
        process.start(QStringLiteral(PANELSIM), QStringList{"--headless"} + options);
        ASSERT_TRUE(process.waitForStarted()) << PANELSIM;
    }

    static Outcome end(QProcess& process) {
        EXPECT_TRUE(process.waitForFinished(generousMs));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput().toStdString(),
                process.readAllStandardError().toStdString()};
    }

    // How many boards' directories there are.
    int boardDirectories() const {
        return QDir(m_directory.path())
            .entryList({QStringLiteral("umockdev.*")}, QDir::Dirs)
            .size();
    }

    QString path(const char* name) const { return m_directory.filePath(QString::fromLatin1(name)); }

    void TearDown() override { EXPECT_EQ(boardDirectories(), 0); }

    QTemporaryDir m_directory;
};

void expectContains(const std::string& text, const std::string& part) {
    EXPECT_NE(text.find(part), std::string::npos) << text;
}

constexpr const char* sayPidAndSleep = "echo $$; exec sleep 1000";

// The process id that the application has said, "application: 123".
pid_t childOf(QProcess& panelsim) {
    const QByteArray prefix = "application: ";
    while (panelsim.canReadLine() || panelsim.waitForReadyRead(generousMs)) {
        const QByteArray line = panelsim.readLine();
        if (line.startsWith(prefix)) {
            return line.mid(prefix.size()).trimmed().toInt();
        }
    }
    ADD_FAILURE() << "the application has said nothing";
    return 0;
}

// No process of that id, or one that has ended and only waits for somebody to ask how.
bool isGone(pid_t process) {
    QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(process));
    return !commandLine.open(QIODevice::ReadOnly) || commandLine.readAll().isEmpty();
}

TEST_F(Panelsim, TellsItsVersion) {
    const Outcome outcome = run({"--version"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "panelsim " VERSION "\n");
}

TEST_F(Panelsim, EndsWellWhenTheScriptDoes) {
    const Outcome ended = play("wait time 50ms\n", "exec sleep 100");
    EXPECT_EQ(ended.status, 0) << ended.error;
}

TEST_F(Panelsim, EndStopsTheScript) {
    EXPECT_EQ(play("end\nwait exit 1\n", "exec sleep 100").status, 0);
}

TEST_F(Panelsim, TellsAWrongCommandLine) {
    const Outcome ended = run({"--zoom", "9"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_EQ(ended.error, "panelsim: --zoom takes a whole number from 1 to 4, not \"9\"\n");
}

TEST_F(Panelsim, TellsAScriptsMistakeByLine) {
    const Outcome ended = play("\ntap here\n", "exit 0");
    EXPECT_EQ(ended.status, 3);
    expectContains(ended.error, "session.txt:2: X must be a whole number");
    EXPECT_EQ(run({"--script", "nowhere"}).status, 3);
}

TEST_F(Panelsim, KeepsTheTimeLimit) {
    const Outcome ended =
        play("wait time 100s\n", "exec sleep 100", {"--no-server", "--time-limit", "200ms"});
    EXPECT_EQ(ended.status, 4);
    expectContains(ended.error, "session.txt:1: wait time 100s: the time limit is over");
}

TEST_F(Panelsim, TellsAWaitThatIsNotMet) {
    const Outcome ended = play("wait text Nothing within 100ms\n", "exec sleep 100");
    EXPECT_EQ(ended.status, 5);
    expectContains(ended.error, "session.txt:1: wait text Nothing within 100ms: not within 100 ms; "
                                "the panel shows nothing; what the panel showed is in ");
    EXPECT_EQ(QImage(path("shots/session-line-1.failed.png")).size(), QSize(480, 272));
    EXPECT_EQ(play("wait request STOP within 100ms\n", "exec sleep 100").status, 5);
    EXPECT_EQ(play("tap 10 10 within 100ms\n", "exec sleep 100").status, 5);
}

TEST_F(Panelsim, TellsWhatThereWasInsteadOfWhatWasAwaited) {
    const QByteArray application = "echo one; echo two; exec sleep 100";
    expectContains(play("wait log two\nwait log on within 100ms\n", application).error,
                   R"(not within 100 ms; written since the last "wait log" or "mark": nothing)");
    expectContains(play("wait log tow within 500ms\n", application).error,
                   R"("mark": "two", "one")");
    expectContains(play("wait request STOP within 100ms\n", application).error,
                   R"(asked since the last "wait request" or "mark": nothing)");
    expectContains(play("wait connection within 100ms\n", application).error,
                   "the server is switched off");
    expectContains(play("tap 10 10 within 100ms\n", application).error,
                   "the application has not noticed");
    expectContains(play("wait reads 1 within 100ms\n", application).error,
                   "the application reads the touched tag too seldom or not at all");
}

TEST_F(Panelsim, TellsWhatTheFingerDoesNotFind) {
    const Outcome text = play("tap \"Ok\"\n", "exec sleep 100");
    EXPECT_EQ(text.status, 5);
    expectContains(text.error, "there is no such text; the panel shows nothing");
    const Outcome tag = play("press tag 3\n", "exec sleep 100");
    EXPECT_EQ(tag.status, 5);
    expectContains(tag.error, "nothing carries this tag; the tags on the panel are none");
}

TEST_F(Panelsim, ThePictureOfAFailureGoesWithTheNextRun) {
    const QString picture = path("shots/session-line-1.failed.png");
    play("expect text Ok\n", "exec sleep 100");
    EXPECT_TRUE(QFile::exists(picture));
    play("end\n", "exec sleep 100");
    EXPECT_FALSE(QFile::exists(picture));
}

TEST_F(Panelsim, TellsEveryMistakeOfAScript) {
    const Outcome ended = play("tap here\nend\nmove 1 2\n", "exit 0");
    EXPECT_EQ(ended.status, 3);
    expectContains(ended.error, "session.txt:1: X must be a whole number");
    expectContains(ended.error, "session.txt:3: the finger is not down");
}

TEST_F(Panelsim, TellsAnExpectationThatIsNotMet) {
    const Outcome ended = play("expect requests STOP\n", "exec sleep 100");
    EXPECT_EQ(ended.status, 5);
    expectContains(ended.error, "expect requests STOP: the requests were none");
    EXPECT_EQ(play("expect text Ok\n", "exec sleep 100").status, 5);
    EXPECT_EQ(play("mark\nexpect memory-growth 100000\nexpect no-request STOP\n", "exec sleep 100")
                  .status,
              0);
}

TEST_F(Panelsim, WaitsForTheApplicationsStatus) {
    EXPECT_EQ(play("wait exit 3\n", "exit 3").status, 0);
    EXPECT_EQ(play("wait exit\n", "exit 7").status, 0);
    EXPECT_EQ(play("wait exit signal 6\n", "kill -ABRT $$").status, 0);
    EXPECT_EQ(play("wait time 200ms\nwait exit 3\n", "exit 3").status, 0);
}

TEST_F(Panelsim, TellsAnUnexpectedEndOfTheApplication) {
    const Outcome ended = play("wait time 20s\n", "exit 3");
    EXPECT_EQ(ended.status, 6);
    expectContains(ended.error, "the application ended with exit status 3");
    EXPECT_EQ(play("wait exit 2\n", "exit 3").status, 6);
    EXPECT_EQ(play("wait exit 0\n", "kill -TERM $$").status, 6);
}

TEST_F(Panelsim, StartsTheApplicationAgain) {
    const Outcome ended = play("wait exit 4\napplication start\nwait exit 5\n",
                               "[ -e second ] && exit 5; touch second; exit 4");
    EXPECT_EQ(ended.status, 0) << ended.error;
}

TEST_F(Panelsim, KillsTheApplication) {
    const Outcome ended = play("application kill\nwait exit\n", "exec sleep 100");
    EXPECT_EQ(ended.status, 5);
    expectContains(ended.error, "the application is not running");
}

TEST_F(Panelsim, PassesTheApplicationsOutputOn) {
    const Outcome ended = play("wait exit 0\n", "echo to out; echo to error >&2");
    expectContains(ended.out, "application: to out\n");
    expectContains(ended.error, "application: to error\n");
}

TEST_F(Panelsim, KnowsWhatTheApplicationHasWritten) {
    const QByteArray application = "echo one >&2; echo two >&2; exec sleep 100";
    EXPECT_EQ(play("wait log one\nmark\n", application).status, 0);
    const Outcome ended = play("wait log one\nwait log two\nexpect log o*\n", application);
    EXPECT_EQ(ended.status, 5);
    expectContains(ended.error, R"(the lines were "one", "two")");
    EXPECT_EQ(play("wait log three within 100ms\n", application).status, 5);
}

TEST_F(Panelsim, TellsWhenTheApplicationCannotBeStarted) {
    const Outcome ended = run({"--no-server", "--app", "/no/such/program"});
    EXPECT_EQ(ended.status, 12);
    expectContains(ended.error, "cannot start /no/such/program");
}

TEST_F(Panelsim, TellsWhatIsMissingForAProgramOfAnotherProcessor) {
    // The head of one for ARM with 32 bits; an emulator may be there, its umockdev is not.
    const QByteArray head("\x7F"
                          "ELF\1\1\1\0\0\0\0\0\0\0\0\0\2\0\x28\0",
                          20);
    const Outcome outcome = run({"--app", write("application", head), "--no-server"});
    EXPECT_EQ(outcome.status, 12);
    expectContains(outcome.error, "is a program for armhf, and this machine has no ");
}

TEST_F(Panelsim, ShowsTheApplicationItsBoard) {
    EXPECT_EQ(
        play("wait exit 0\n", "[ -c /dev/spidev2.0 ] && [ -e /sys/class/gpio/export ]").status, 0);
    EXPECT_EQ(play("wait exit 0\n", "[ ! -e /dev/spidev2.0 ]",
                   {"--no-server", "--board-fault", "no-spi-node"})
                  .status,
              0);
    EXPECT_EQ(play("wait exit 0\n", "[ ! -e /sys/class/gpio/export ]",
                   {"--no-server", "--board-fault", "no-gpio-export"})
                  .status,
              0);
}

// So that they stand still together where a processor does, and no reply comes too late for that.
TEST_F(Panelsim, TheApplicationSharesOneProcessorWithTheServer) {
    const Outcome ended = play("wait exit 0\n", R"sh(
        processors() { sed -n 's/^Cpus_allowed_list:\s*//p' "$1/status"; }
        for thread in /proc/$PPID/task/*; do
            case "$(cat "$thread/comm")" in
                "measurement ser"*) echo "server: $(processors "$thread")" ;;
            esac
        done
        echo "itself: $(processors /proc/self)"
        echo "panelsim: $(processors /proc/$PPID)")sh");
    std::smatch own;
    ASSERT_TRUE(std::regex_search(ended.out, own, std::regex(R"(itself: (\d+)\n)"))) << ended.out;
    expectContains(ended.out, "server: " + own.str(1) + '\n');
    if (QThread::idealThreadCount() > 1) {
        EXPECT_EQ(ended.out.find("panelsim: " + own.str(1) + '\n'), std::string::npos)
            << "the model runs wherever there is room";
    }
}

TEST_F(Panelsim, StartsNoApplicationOnRequestButTellsItsEnvironment) {
    const Outcome ended = play("wait time 10ms\n", "exit 3", {"--no-server", "--no-app"});
    EXPECT_EQ(ended.status, 0) << ended.error;
    expectContains(ended.out, "LD_PRELOAD=");
    expectContains(ended.out, "/application\n");
}

TEST_F(Panelsim, TellsWhenAFileCannotBeWritten) {
    const Outcome ended =
        play("end\n", "exec sleep 100", {"--no-server", "--trace", "/no/such/file"});
    EXPECT_EQ(ended.status, 8);
    expectContains(ended.error, "cannot write the trace /no/such/file");
    const Outcome full = play("end\n", "exec sleep 100", {"--no-server", "--trace", "/dev/full"});
    EXPECT_EQ(full.status, 8);
    expectContains(full.error, "cannot write all of the trace /dev/full");
    EXPECT_EQ(
        play("screenshot a now\n", "exec sleep 100", {"--no-server", "--screenshots", "/proc/x"})
            .status,
        8);
}

TEST_F(Panelsim, TellsWhenAPictureDoesNotFitOnTheDisk) {
    QDir().mkpath(path("shots"));
    ASSERT_TRUE(QFile::link("/dev/full", path("shots/a.png")));
    const Outcome ended = play("screenshot a now\n", "exec sleep 100");
    EXPECT_EQ(ended.status, 8);
    expectContains(ended.error, "session.txt:1: screenshot a now: cannot write the picture ");
}

// Sends a host command that there is none, twice, so that the end of the first is seen for sure.
constexpr const char* sendNonsense =
    "exec " BOARD_PROGRAM " init open CS1 PD1 CS0 'send=z  ' CS1 CS0 'send=z  ' CS1";

TEST_F(Panelsim, TellsWhatTheControllerComplainsAbout) {
    const Outcome ended = play("wait exit 0\nwait time 100s\n", sendNonsense);
    EXPECT_EQ(ended.status, 10);
    expectContains(ended.error, "panelsim: controller: unknown host command");
}

TEST_F(Panelsim, AllowedComplaintsAreNoFailure) {
    const Outcome ended =
        play("allow complaint \"unknown host command*\"\nwait exit 0\n", sendNonsense);
    EXPECT_EQ(ended.status, 0) << ended.error;
}

TEST_F(Panelsim, TracesTheBus) {
    const Outcome ended = play("allow complaint *\nwait exit 0\n", sendNonsense,
                               {"--no-server", "--trace", path("trace"), "--stats"});
    EXPECT_EQ(ended.status, 0) << ended.error;
    expectContains(ended.out, "spi-messages: 2\nspi-bytes: 6\n");
    QFile trace(path("trace"));
    ASSERT_TRUE(trace.open(QIODevice::ReadOnly));
    const QByteArray lines = trace.readAll();
    EXPECT_TRUE(lines.contains(" H 0x7A 0x20\n")) << lines.toStdString();
    EXPECT_TRUE(lines.contains(" P CS low\n")) << lines.toStdString();
    EXPECT_TRUE(lines.contains(" S ")) << lines.toStdString();
}

TEST_F(Panelsim, ScreenshotsAreComparedWithStoredPictures) {
    const QByteArray script = "screenshot dark now\n";
    const QStringList compare{"--no-server", "--compare", path("stored")};
    const Outcome missing = play(script, "exec sleep 100", compare);
    EXPECT_EQ(missing.status, 7);
    expectContains(missing.error, "session.txt:1: screenshot dark now: there is no stored picture");
    expectContains(missing.error, "session.txt: pictures that are not as stored: dark");

    EXPECT_EQ(play(script, "exec sleep 100", compare + QStringList{"--renew"}).status, 0);
    EXPECT_EQ(QImage(path("stored/dark.png")).size(), QSize(480, 272));
    EXPECT_EQ(play(script, "exec sleep 100", compare).status, 0);

    QImage other(480, 272, QImage::Format_RGB32);
    other.fill(Qt::yellow);
    other.save(path("stored/dark.png"));
    EXPECT_EQ(play(script, "exec sleep 100", compare).status, 7);
    EXPECT_TRUE(QFile::exists(path("shots/dark.difference.png")));
}

TEST_F(Panelsim, PrintsStatisticsOnRequest) {
    const Outcome ended = play("report\n", "exec sleep 100", {"--no-server", "--stats"});
    expectContains(ended.out, "spi-messages: 0\n");
    expectContains(ended.out, "application-pid: ");
}

TEST_F(Panelsim, TellsWhenTheServersPortIsTaken) {
    QTcpServer occupant;
    ASSERT_TRUE(occupant.listen(QHostAddress::LocalHost, 9800));
    const Outcome ended = play("end\n", "exec sleep 100", {});
    EXPECT_EQ(ended.status, 9);
    expectContains(ended.error, "9800");
    EXPECT_EQ(play("server start\n", "exec sleep 100").status, 9);
}

TEST_F(Panelsim, AScriptSwitchesTheServer) {
    EXPECT_EQ(
        play("server start\nserver stop\nserver start\nwait no-connection\n", "exec sleep 100")
            .status,
        0);
}

TEST_F(Panelsim, AnswersWhatIsAskedOnItsInput) {
    panel::BoundProcess process;
    start(process, {"--no-server", "--inspect", "--app", application(sayPidAndSleep)});
    childOf(process);
    process.write("pause\nregisters REG_ID\nnonsense\n");
    process.closeWriteChannel();
    QByteArray answers;
    while (!answers.contains("no \"nonsense\"") && process.waitForReadyRead(generousMs)) {
        answers += process.readAllStandardOutput();
    }
    EXPECT_TRUE(answers.contains("paused\nREG_ID  ")) << answers.toStdString();
    process.terminate();
    EXPECT_EQ(end(process).status, 0);
}

TEST_F(Panelsim, WithoutScriptItEndsWithTheApplication) {
    EXPECT_EQ(run({"--no-server", "--app", application("exit 0")}).status, 0);
    EXPECT_EQ(run({"--no-server", "--app", application("exit 3")}).status, 6);
}

TEST_F(Panelsim, ASignalEndsItAndTheApplication) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        std::signal(signal, SIG_DFL); // whoever started the test may have it ignored
        panel::BoundProcess process;
        start(process, {"--no-server", "--app", application(sayPidAndSleep)});
        const pid_t child = childOf(process);
        EXPECT_EQ(boardDirectories(), 1);
        kill(static_cast<pid_t>(process.processId()), signal);
        EXPECT_EQ(end(process).status, 0);
        EXPECT_TRUE(isGone(child));
        EXPECT_EQ(boardDirectories(), 0);
    }
}

TEST_F(Panelsim, ASignalDuringASessionIsAFailure) {
    panel::BoundProcess process;
    start(process, {"--no-server", "--script", write("session.txt", "wait time 1000s\n"), "--app",
                    application(sayPidAndSleep)});
    childOf(process);
    process.terminate();
    EXPECT_EQ(end(process).status, 13);
}

TEST_F(Panelsim, TheApplicationDoesNotOutliveAKilledPanelsim) {
    panel::BoundProcess process;
    start(process, {"--no-server", "--app", application(sayPidAndSleep)});
    const pid_t child = childOf(process);
    process.kill();
    process.waitForFinished(generousMs);
    QElapsedTimer timer;
    timer.start();
    while (!isGone(child) && !timer.hasExpired(generousMs)) {
        QThread::msleep(10);
    }
    EXPECT_TRUE(isGone(child));
    EXPECT_EQ(boardDirectories(), 1) << "nobody was left to remove it";
    EXPECT_EQ(play("end\n", "exec sleep 100").status, 0);
    EXPECT_EQ(boardDirectories(), 0) << "the next one does";
}

TEST_F(Panelsim, TheBoardOfAnotherPanelsimStays) {
    panel::BoundProcess process;
    start(process, {"--no-server", "--app", application(sayPidAndSleep)});
    childOf(process);
    play("end\n", "exec sleep 100");
    EXPECT_EQ(boardDirectories(), 1);
    process.terminate();
    EXPECT_EQ(end(process).status, 0);
}

TEST_F(Panelsim, ReadsAScriptFromItsStandardInputAndSaysEachLineOnRequest) {
    panel::BoundProcess process;
    start(process, {"--no-server", "--no-app", "--script", "-", "--verbose"});
    process.write("wait time 1ms\n# a comment\nend # here\n");
    process.closeWriteChannel();
    const Outcome ended = end(process);
    EXPECT_EQ(ended.status, 0) << ended.error;
    expectContains(ended.out, "standard input:1: wait time 1ms\nstandard input:3: end # here\n");
}

TEST_F(Panelsim, SaysWhatGenerationsOneAndTwoLookLike) {
    expectContains(play("end\n", "exec sleep 100", {"--no-server", "--generation", "1"}).error,
                   "the application ends by an assertion");
    expectContains(play("end\n", "exec sleep 100", {"--no-server", "--generation", "2"}).error,
                   "the panel stays black");
    EXPECT_EQ(play("end\n", "exec sleep 100").error, "");
}

TEST_F(Panelsim, RecordsOnlyWhatIsDoneInAWindow) {
    const Outcome ended =
        play("end\n", "exec sleep 100", {"--no-server", "--record", path("recording")});
    EXPECT_EQ(ended.status, 2);
    expectContains(ended.error, "--record writes down what is done in the window");
    EXPECT_FALSE(QFile::exists(path("recording")));
}

TEST_F(Panelsim, TellsADisplayThatCannotBeOpened) {
    panel::BoundProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("no-such-platform"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(PANELSIM), {"--no-server", "--no-app"});
    const Outcome ended = end(process);
    EXPECT_EQ(ended.status, 15);
    EXPECT_EQ(ended.error, "panelsim: cannot open the display (QT_QPA_PLATFORM=no-such-platform); "
                           "--headless does without a window\n");
}

} // namespace
