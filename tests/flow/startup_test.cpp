#include "datareader.h"
#include "debuglog.h"
#include "screentest.h"
#include "scriptedserver.h"
#include "servicemanager.h"
#include "startup.h"

#include <QMetaType>

#include <gmock/gmock.h>

#include <memory>
#include <vector>

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

using StartupTest = ScreenTest;

TEST_F(StartupTest, RegistersTheClientsRecordsByName) {
    registerRecords();
    EXPECT_NE(QMetaType::type("DataReaderData"), int{QMetaType::UnknownType});
    EXPECT_NE(QMetaType::type("DataReaderParams"), int{QMetaType::UnknownType});
}

// The generation that is logged for a chip id, starting from the registry's own EVE_1.
QStringList loggedFor(std::uint32_t chipId) {
    DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_1);
    board.poke(0xC0000, chipId);
    const DebugLog log;
    detectController();
    return log.messages();
}

TEST_F(StartupTest, SelectsAndLogsTheControllersGeneration) {
    EXPECT_EQ(loggedFor(0x00011508), QStringList{"Display Settings done!!! 2"});
    EXPECT_EQ(DisplaySettings::getInstance()->getDisplayGeneration(), DisplaySettings::EVE_3);
    EXPECT_EQ(loggedFor(0x00010108), QStringList{"Display Settings done!!! 0"});
    EXPECT_EQ(DisplaySettings::getInstance()->getDisplayGeneration(), DisplaySettings::EVE_1);
}

TEST_F(StartupTest, AControllerThatIsNotRecognisedLeavesTheRegistryAtEVE1) {
    EXPECT_EQ(loggedFor(0), QStringList{"Display Settings done!!! 0"});
}

TEST_F(StartupTest, WritesTheSixTouchTransformValuesWhateverTheGeneration) {
    struct Case {
        DisplaySettings::DisplayGeneration generation;
        std::uint32_t firstRegister;
    };
    for (const Case& each :
         {Case{DisplaySettings::EVE_1, 0x10251C}, Case{DisplaySettings::EVE_2, 0x302150},
          Case{DisplaySettings::EVE_3, 0x302150}}) {
        DisplaySettings::getInstance()->setDisplayGeneration(each.generation);
        board.reset();
        writeTouchTransform(&host);
        const std::uint32_t a = each.firstRegister;
        EXPECT_THAT(board.transactions(),
                    ElementsAre(Transaction::write32(a, 24916), Transaction::write32(a + 4, 0),
                                Transaction::write32(a + 8, 0xFFF6F866), // -591770
                                Transaction::write32(a + 12, 372),
                                Transaction::write32(a + 16, 22707),
                                Transaction::write32(a + 20, 10494)));
    }
}

class ConnectToServerTest : public ScreenTest {
protected:
    ConnectToServerTest() {
        board.onSleep([this](unsigned ms) {
            sleeps.push_back(ms);
            if (sleeps.size() == sleepsUntilServer) {
                server = std::make_unique<ScriptedServer>();
            }
        });
    }
    ~ConnectToServerTest() override { board.onSleep(nullptr); }

    std::vector<unsigned> sleeps;
    std::size_t sleepsUntilServer = 0;
    std::unique_ptr<ScriptedServer> server;
    DataReader client;
    ServiceManager manager; // of which there is none here
};

TEST_F(ConnectToServerTest, AServerThatIsThereIsUsedAtOnce) {
    server = std::make_unique<ScriptedServer>();
    EXPECT_TRUE(connectToServer(client, manager));
    EXPECT_THAT(sleeps, SizeIs(0));
}

TEST_F(ConnectToServerTest, AServerThatAcceptsOnTheThirdAttemptIsUsedAfterTwoSleepsOfASecond) {
    sleepsUntilServer = 2;
    EXPECT_TRUE(connectToServer(client, manager));
    EXPECT_THAT(sleeps, ElementsAre(1000U, 1000U));
    EXPECT_TRUE(client.isSocketReady());
}

TEST_F(ConnectToServerTest, GivesUpAfterTenAttemptsEachFollowedByASleep) {
    EXPECT_FALSE(connectToServer(client, manager));
    EXPECT_THAT(sleeps, SizeIs(10));
    EXPECT_THAT(sleeps, Each(1000U));
}

TEST_F(ConnectToServerTest, AServerThatComesAfterTheTenthAttemptIsTooLate) {
    sleepsUntilServer = 10;
    EXPECT_FALSE(connectToServer(client, manager));
    EXPECT_EQ(server->connections(), 0);
}

TEST_F(ConnectToServerTest, AServerThatAcceptsOnTheTenthAttemptIsUsed) {
    sleepsUntilServer = 9;
    EXPECT_TRUE(connectToServer(client, manager));
    EXPECT_THAT(sleeps, SizeIs(9));
}

} // namespace
