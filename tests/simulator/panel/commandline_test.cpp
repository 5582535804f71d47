#include "commandline.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace panel {
namespace {

CommandLine parsed(QStringList options) {
    options.prepend(QStringLiteral("/opt/bin/panelsim"));
    return parseCommandLine(options);
}

Settings settingsOf(const QStringList& options) {
    const CommandLine commandLine = parsed(options);
    EXPECT_EQ(commandLine.error.toStdString(), "");
    return commandLine.settings;
}

std::string errorOf(const QStringList& options) {
    return parsed(options).error.toStdString();
}

TEST(CommandLine, HasDefaultsForEverything) {
    const Settings settings = settingsOf({});
    EXPECT_EQ(settings.generation, controller::Generation::E3);
    EXPECT_EQ(settings.application, "/opt/bin/frontpanel");
    EXPECT_TRUE(settings.startApplication);
    EXPECT_TRUE(settings.startServer);
    EXPECT_FALSE(settings.serverAnswersEverything);
    EXPECT_FALSE(settings.headless);
    EXPECT_EQ(settings.zoom, 2);
    EXPECT_EQ(settings.script, "");
    EXPECT_EQ(settings.timeLimit.count(), 300000);
    EXPECT_EQ(settings.screenshots, "screenshots");
    EXPECT_FALSE(settings.remotePort);
    EXPECT_EQ(settings.stored, "");
    EXPECT_TRUE(settings.board.spiNode);
    EXPECT_EQ(settings.boardDevice, "");
}

TEST(CommandLine, SharesThePanelAtAPortOrAtTheUsualOne) {
    EXPECT_EQ(settingsOf({"--remote", "7000"}).remotePort, 7000);
    EXPECT_EQ(settingsOf({"--remote=0"}).remotePort, 0);
    EXPECT_EQ(settingsOf({"--remote"}).remotePort, 5900);
    const Settings settings = settingsOf({"--remote", "--remote-address", "0.0.0.0", "--headless"});
    EXPECT_EQ(settings.remotePort, 5900);
    EXPECT_EQ(settings.remoteAddress, "0.0.0.0");
    EXPECT_TRUE(settings.headless);
    EXPECT_EQ(settingsOf({"--remote", "--remote-password", "file"}).remotePassword, "file");
}

TEST(CommandLine, SharesItWithThisMachineAloneUnlessToldOtherwise) {
    EXPECT_EQ(settingsOf({"--remote"}).remoteAddress, "127.0.0.1");
}

TEST(CommandLine, TellsWrongSharing) {
    EXPECT_EQ(errorOf({"--remote", "100"}), "--remote takes 0 or a port from 101 on, not \"100\"");
    EXPECT_EQ(errorOf({"--remote", "x"}),
              "--remote takes a whole number from 0 to 65535, not \"x\"");
    EXPECT_EQ(errorOf({"--remote", "--remote-address", "here"}),
              "--remote-address takes an IP address, not \"here\"");
    EXPECT_EQ(errorOf({"--remote-password", "file"}),
              "--remote-address and --remote-password go with --remote");
}

TEST(CommandLine, TakesTheKernelsBoardInsteadOfOneWithAFault) {
    EXPECT_EQ(settingsOf({"--board", "/dev/panelboard"}).boardDevice, "/dev/panelboard");
    EXPECT_NE(errorOf({"--board", "/dev/panelboard", "--board-fault", "no-spi-node"}), "");
}

TEST(CommandLine, TakesEveryOption) {
    const Settings settings = settingsOf({"--app",
                                          "/bin/true",
                                          "--no-app",
                                          "--generation",
                                          "1",
                                          "--seed",
                                          "7",
                                          "--no-server",
                                          "--server-answers-everything",
                                          "--headless",
                                          "--zoom",
                                          "4",
                                          "--script",
                                          "s",
                                          "--time-limit",
                                          "90s",
                                          "--screenshots",
                                          "d",
                                          "--compare",
                                          "c",
                                          "--renew",
                                          "--trace",
                                          "t",
                                          "--stats",
                                          "--server",
                                          "instrument:9801",
                                          "--fault",
                                          "bus-slow 7ms after 1s",
                                          "--fault",
                                          "server-cut"});
    EXPECT_EQ(settings.application, "/bin/true");
    EXPECT_FALSE(settings.startApplication);
    EXPECT_EQ(settings.generation, controller::Generation::E1);
    EXPECT_EQ(settings.seed, 7U);
    EXPECT_FALSE(settings.startServer);
    EXPECT_TRUE(settings.serverAnswersEverything);
    EXPECT_TRUE(settings.headless);
    EXPECT_EQ(settings.zoom, 4);
    EXPECT_EQ(settings.script, "s");
    EXPECT_EQ(settings.timeLimit.count(), 90000);
    EXPECT_EQ(settings.screenshots, "d");
    EXPECT_EQ(settings.stored, "c");
    EXPECT_TRUE(settings.renew);
    EXPECT_EQ(settings.trace, "t");
    EXPECT_TRUE(settings.statistics);
    EXPECT_EQ(settings.realServer.host, "instrument");
    EXPECT_EQ(settings.realServer.port, 9801);
    ASSERT_EQ(settings.faults.size(), 2U);
    EXPECT_EQ(settings.faults[0].time.count(), 7);
    EXPECT_EQ(settings.faults[0].after.count(), 1000);
    EXPECT_EQ(settings.faults[1].name, "server-cut");
}

TEST(CommandLine, BuildsFaultyBoards) {
    EXPECT_FALSE(settingsOf({"--board-fault", "no-spi-node"}).board.spiNode);
    EXPECT_FALSE(settingsOf({"--board-fault", "no-gpio-export"}).board.gpioExport);
    EXPECT_TRUE(settingsOf({"--board-fault", "lines-exported"}).board.linesAlreadyExported);
    EXPECT_EQ(errorOf({"--board-fault", "fire"}), "--board-fault takes no-spi-node, no-gpio-export "
                                                  "or lines-exported, not \"fire\"");
}

TEST(CommandLine, InspectsAtAnySpeed) {
    EXPECT_TRUE(parsed({"--inspect"}).settings.inspect);
    EXPECT_EQ(parsed({"--speed", "0.25"}).settings.speed, 0.25);
    EXPECT_FALSE(parsed({"--trace-format", "text"}).settings.traceIsVcd);
    EXPECT_TRUE(parsed({"--trace-format", "vcd"}).settings.traceIsVcd);
}

TEST(CommandLine, SaysWhatIsWrong) {
    EXPECT_EQ(errorOf({"--generation", "4"}),
              "--generation takes a whole number from 1 to 3, not \"4\"");
    EXPECT_EQ(errorOf({"--zoom", "0"}), "--zoom takes a whole number from 1 to 4, not \"0\"");
    EXPECT_EQ(errorOf({"--seed", "x"}),
              "--seed takes a whole number from 0 to 4294967295, not \"x\"");
    EXPECT_EQ(errorOf({"--time-limit", "90"}),
              "--time-limit must be a time such as 500ms or 2s, not \"90\"");
    EXPECT_EQ(errorOf({"--trace-format", "xml"}), "--trace-format takes text or vcd, not \"xml\"");
    EXPECT_EQ(errorOf({"--speed", "0"}), "--speed takes a number from 0.001 to 20, not \"0\"");
    EXPECT_EQ(errorOf({"--renew"}), "--renew stores the pictures of --compare DIR; give both");
    EXPECT_EQ(errorOf({"--record", "a", "--headless"}),
              "--record writes down what is done in the window by hand; leave out --headless and "
              "--script");
    EXPECT_EQ(errorOf({"--record", "a", "--script", "b"}),
              errorOf({"--record", "a", "--headless"}));
    EXPECT_EQ(errorOf({"session.txt"}), "\"session.txt\" is no option; --help lists them");
    EXPECT_EQ(errorOf({"--nonsense"}), "Unknown option 'nonsense'. --help lists the options.");
}

class CommandLineHelp : public testing::Test {
    int m_argc = 1;
    char m_name[9] = "panelsim";
    char* m_argv[2] = {m_name, nullptr};
    QCoreApplication m_application{m_argc, m_argv};
};

TEST_F(CommandLineHelp, TellsKeysCommandsAndExitStatuses) {
    EXPECT_TRUE(parsed({"--help"}).wantsHelp);
    const QString help = helpText();
    EXPECT_TRUE(help.contains("--compare <DIR>"));
    EXPECT_TRUE(help.contains("  R  restart the application"));
    EXPECT_TRUE(help.contains("  tap WHERE "));
    EXPECT_TRUE(help.contains("   9  the measurement server's port is in use"));
}

TEST_F(CommandLineHelp, FitsATerminal) {
    for (const QString& line : helpText().split('\n')) {
        EXPECT_LE(line.size(), 100) << line.toStdString();
    }
}

} // namespace
} // namespace panel
