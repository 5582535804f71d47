#include "faults.h"
#include "patience.h"

#include <QSignalSpy>
#include <QTest>

#include <gmock/gmock.h>

namespace panel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// On a controller that has been started.
class FaultsTest : public testing::Test {
protected:
    void SetUp() override {
        m_module.addWatcher(&m_complaints);
        start();
        EXPECT_TRUE(QTest::qWaitFor(
            [this] {
                m_module.advance();
                return chipId() == 0x00011508U &&
                       m_module.registerValue(controller::Register::CpuReset) == 0;
            },
            generousMs));
    }

    void start() {
        m_module.powerDown(true);
        m_module.chipSelect(true);
        m_module.chipSelect(false);
        const std::array<std::uint8_t, 3> active{};
        m_module.transfer(active.data(), nullptr, active.size());
        m_module.chipSelect(true);
    }

    std::uint32_t chipId() const {
        return m_module.locked(
            [](const controller::Controller& controller) { return controller.peek32(0xC0000); });
    }
    std::uint32_t coprocessorReadOffset() const {
        return static_cast<std::uint32_t>(m_module.registerValue(controller::Register::CmdRead));
    }

    void begin(const QString& text) {
        QString error;
        const auto order = parseFaultOrder(text.split(' '), &error);
        ASSERT_TRUE(order) << error.toStdString();
        faults.begin(*order);
    }

    std::vector<std::string> active() const {
        std::vector<std::string> names;
        for (const QString& name : faults.active()) {
            names.push_back(name.toStdString());
        }
        return names;
    }

    Complaints m_complaints{[this](const QString& text) { m_failure = text; }};
    QString m_failure;
    DisplayModule m_module{controller::Generation::E3};
    server::MeasurementServer m_server{1};
    bool m_serverOn = true;
    bool m_pinsForbidden = false;
    Faults faults{m_module,
                  m_complaints,
                  {[this](const auto& action) { action(m_server); },
                   [this](bool on) { m_serverOn = on; },
                   [this](bool forbidden) { m_pinsForbidden = forbidden; }}};
};

TEST_F(FaultsTest, NoneIsOnAtFirst) {
    EXPECT_THAT(active(), IsEmpty());
    EXPECT_EQ(faults.strikes("bus-dead"), 0);
}

TEST_F(FaultsTest, AreOnUntilEnded) {
    QSignalSpy changed(&faults, &Faults::changed);
    begin("server-off");
    EXPECT_FALSE(m_serverOn);
    begin("pins-forbidden");
    EXPECT_TRUE(m_pinsForbidden);
    EXPECT_THAT(active(), ElementsAre("pins-forbidden", "server-off"));
    faults.end("server-off");
    EXPECT_TRUE(m_serverOn);
    EXPECT_THAT(active(), ElementsAre("pins-forbidden"));
    faults.endAll();
    EXPECT_FALSE(m_pinsForbidden);
    EXPECT_THAT(active(), IsEmpty());
    EXPECT_EQ(changed.size(), 4);
}

TEST_F(FaultsTest, EndingWhatIsNotOnDoesNothing) {
    QSignalSpy changed(&faults, &Faults::changed);
    faults.end("server-off");
    EXPECT_TRUE(changed.isEmpty());
}

TEST_F(FaultsTest, WrongIdIsTheOwnOneAgainAfterwards) {
    begin("controller-wrong-id 00010108");
    EXPECT_EQ(chipId(), 0x00010108U);
    EXPECT_EQ(faults.strikes("controller-wrong-id"), 1);
    faults.end("controller-wrong-id");
    EXPECT_EQ(chipId(), 0x00011508U);
}

TEST_F(FaultsTest, CoprocessorFaultIsNoFailureOfASession) {
    begin("coprocessor-fault");
    EXPECT_EQ(coprocessorReadOffset(), 0xFFFU);
    EXPECT_THAT(active(), IsEmpty()) << "it strikes once, and has";
    EXPECT_EQ(m_failure.toStdString(), "");
}

TEST_F(FaultsTest, BrownOutLosesTheControllersState) {
    begin("controller-brown-out");
    EXPECT_EQ(faults.strikes("controller-brown-out"), 1);
    m_module.advance();
    EXPECT_EQ(m_module.panel().scanning, false);
    QTest::qWait(50);
    start();
    EXPECT_TRUE(QTest::qWaitFor(
        [this] {
            m_module.advance();
            return chipId() == 0x00011508U;
        },
        generousMs));
}

TEST_F(FaultsTest, SlowBootIsThatOfTheNextStart) {
    begin("controller-slow-boot 24s");
    EXPECT_EQ(chipId(), 0x00011508U);
    m_module.powerDown(false);
    start();
    QTest::qWait(100); // five times what it takes without the fault
    m_module.advance();
    std::array<std::uint8_t, 1> byte{};
    m_module.chipSelect(false);
    const std::array<std::uint8_t, 4> header{0x30, 0x20, 0x00, 0x00};
    m_module.transfer(header.data(), nullptr, header.size());
    m_module.transfer(nullptr, byte.data(), byte.size());
    m_module.chipSelect(true);
    EXPECT_EQ(byte[0], 0) << "REG_ID cannot be read yet";
}

TEST_F(FaultsTest, BeginLater) {
    begin("server-off after 30ms");
    EXPECT_TRUE(m_serverOn);
    EXPECT_THAT(active(), ElementsAre("server-off"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_serverOn; }, generousMs));
}

TEST_F(FaultsTest, WhatIsEndedBeforeItBeginsDoesNot) {
    begin("server-off after 30ms");
    faults.end("server-off");
    begin("pins-forbidden after 60ms");
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_pinsForbidden; }, generousMs));
    EXPECT_TRUE(m_serverOn);
}

TEST_F(FaultsTest, OneMessageThatHasFailedIsNoFaultAnyMore) {
    begin("bus-fails-at");
    EXPECT_THAT(active(), ElementsAre("bus-fails-at"));
    EXPECT_THROW(faults.wires().transfer(nullptr, nullptr, 0), board::TransferFailed);
    EXPECT_THAT(active(), IsEmpty());
    EXPECT_EQ(faults.strikes("bus-fails-at"), 1);
}

} // namespace
} // namespace panel
