#include "notifysocket.h"
#include "servicemanager.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const std::string signOfLife = "WATCHDOG=1\n";

class ServiceManagerTest : public testing::Test {
protected:
    ~ServiceManagerTest() override {
        unsetenv("NOTIFY_SOCKET");
        unsetenv("WATCHDOG_USEC");
        unsetenv("WATCHDOG_PID");
    }

    ServiceManager manager() {
        return ServiceManager([this] { return now; });
    }

    std::chrono::steady_clock::time_point now{1h};
};

std::size_t openDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

TEST_F(ServiceManagerTest, IsToldOfEachStepOfTheStartAndOfItsEnd) {
    const NotifySocket socket;
    ServiceManager manager;
    manager.starting("connecting, attempt 3 of 10", 22s);
    manager.ready("running");
    EXPECT_THAT(socket.messages(),
                ElementsAre("STATUS=connecting, attempt 3 of 10\nEXTEND_TIMEOUT_USEC=22000000\n",
                            "READY=1\nSTATUS=running\n"));
}

TEST_F(ServiceManagerTest, MayListenAtAPath) {
    const NotifySocket socket(testing::TempDir() + "notify-" + std::to_string(getpid()));
    ServiceManager().ready("running");
    EXPECT_THAT(socket.messages(), ElementsAre("READY=1\nSTATUS=running\n"));
}

TEST_F(ServiceManagerTest, WithoutOneNothingIsOpened) {
    setenv("WATCHDOG_USEC", "2000000", 1);
    const std::size_t before = openDescriptors();
    ServiceManager manager;
    manager.starting("connecting", 1s);
    manager.ready("running");
    manager.alive();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(ServiceManagerTest, ANameThatIsNoSocketsIsNone) {
    const std::size_t before = openDescriptors();
    for (const std::string& name :
         {std::string(), std::string("relative"), std::string("vsock:2:1234"),
          "/" + std::string(sizeof(sockaddr_un::sun_path), 'x')}) {
        setenv("NOTIFY_SOCKET", name.c_str(), 1);
        ServiceManager manager;
        manager.ready("running");
        manager.alive();
        EXPECT_EQ(openDescriptors(), before) << name;
    }
}

TEST_F(ServiceManagerTest, ClosesItsSocket) {
    const NotifySocket socket;
    const std::size_t before = openDescriptors();
    std::optional<ServiceManager> manager(std::in_place);
    EXPECT_EQ(openDescriptors(), before + 1);
    manager.reset();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(ServiceManagerTest, SignsOfLifeGoOutAtOnceAndThenWheneverHalfTheTimeIsOver) {
    const NotifySocket socket;
    setenv("WATCHDOG_USEC", "2000000", 1);
    ServiceManager manager([this] { return now; });
    manager.alive();
    EXPECT_THAT(socket.messages(), ElementsAre(signOfLife));
    now += 999ms;
    manager.alive();
    EXPECT_THAT(socket.messages(), IsEmpty());
    now += 1ms;
    manager.alive();
    manager.alive();
    EXPECT_THAT(socket.messages(), ElementsAre(signOfLife));
    now += 999ms;
    manager.alive();
    EXPECT_THAT(socket.messages(), IsEmpty());
    now += 5s;
    manager.alive();
    manager.alive();
    EXPECT_THAT(socket.messages(), ElementsAre(signOfLife));
}

TEST_F(ServiceManagerTest, NoSignsOfLifeAreSentThatNobodyWants) {
    const NotifySocket socket;
    for (const char* granted : {"", "0", "-5", "soon"}) {
        setenv("WATCHDOG_USEC", granted, 1);
        ServiceManager().alive();
    }
    unsetenv("WATCHDOG_USEC");
    ServiceManager().alive();
    EXPECT_THAT(socket.messages(), IsEmpty());
}

TEST_F(ServiceManagerTest, AnotherProcesssSignsOfLifeAreItsOwnMatter) {
    const NotifySocket socket;
    setenv("WATCHDOG_USEC", "2000000", 1);
    setenv("WATCHDOG_PID", std::to_string(getppid()).c_str(), 1);
    ServiceManager().alive();
    EXPECT_THAT(socket.messages(), IsEmpty());
    setenv("WATCHDOG_PID", std::to_string(getpid()).c_str(), 1);
    ServiceManager().alive();
    EXPECT_THAT(socket.messages(), ElementsAre(signOfLife));
}

TEST_F(ServiceManagerTest, WhatIsNotTakenIsOfferedAgain) {
    const std::string path = testing::TempDir() + "late-" + std::to_string(getpid());
    setenv("NOTIFY_SOCKET", path.c_str(), 1);
    ServiceManager manager;
    manager.starting("connecting", 1s);
    manager.ready("running");
    const NotifySocket socket(path);
    manager.alive();
    manager.alive();
    EXPECT_THAT(socket.messages(), ElementsAre("STATUS=connecting\nEXTEND_TIMEOUT_USEC=1000000\n"
                                               "READY=1\nSTATUS=running\n"));
}

TEST_F(ServiceManagerTest, ASignOfLifeThatIsNotTakenIsSentAtTheNextLook) {
    const std::string path = testing::TempDir() + "later-" + std::to_string(getpid());
    setenv("NOTIFY_SOCKET", path.c_str(), 1);
    setenv("WATCHDOG_USEC", "2000000", 1);
    ServiceManager manager([this] { return now; });
    manager.alive();
    const NotifySocket socket(path);
    manager.alive();
    EXPECT_THAT(socket.messages(), ElementsAre(signOfLife));
}

TEST_F(ServiceManagerTest, OneThatDoesNotListenHoldsNobodyUp) {
    const NotifySocket socket;
    setenv("WATCHDOG_USEC", "2", 1);
    ServiceManager manager([this] { return now += 1s; });
    for (int i = 0; i < 5000; ++i) {
        manager.alive();
    }
    manager.ready("running");
    const std::vector<std::string> taken = socket.messages();
    EXPECT_LT(taken.size(), 5000U);
    EXPECT_THAT(taken.back(), signOfLife);
    manager.alive();
    EXPECT_THAT(socket.messages(), ElementsAre("READY=1\nSTATUS=running\n", signOfLife));
}

} // namespace
