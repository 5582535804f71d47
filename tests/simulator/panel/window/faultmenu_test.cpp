#include "faultmenu.h"

#include <gtest/gtest.h>

namespace panel {
namespace {

class FaultMenuTest : public testing::Test {
protected:
    QAction* action(const QString& name) {
        for (QAction* candidate : menu.actions()) {
            if (candidate->text() == name) {
                return candidate;
            }
        }
        ADD_FAILURE() << "there is no " << name.toStdString();
        return nullptr;
    }

    DisplayModule m_module{controller::Generation::E3};
    Complaints m_complaints{[](const QString& /*text*/) {}};
    server::MeasurementServer m_server{1};
    Faults faults{m_module,
                  m_complaints,
                  {[this](const auto& what) { what(m_server); }, [](bool /*on*/) {},
                   [](bool /*forbidden*/) {}}};
    QMenu menu{"&Faults"};
    FaultMenu* const m_filled = new FaultMenu(faults, menu); // owned by the menu
};

TEST_F(FaultMenuTest, HasEveryFault) {
    for (const QString& name : faultNames()) {
        EXPECT_FALSE(action(name)->isChecked());
        EXPECT_NE(action(name)->toolTip(), name);
    }
    EXPECT_EQ(menu.title(), "&Faults");
}

TEST_F(FaultMenuTest, ChoosingAFaultTurnsItOnAndOff) {
    action("server-off")->trigger();
    EXPECT_EQ(faults.active(), QStringList("server-off"));
    EXPECT_EQ(menu.title(), "&Faults (on: server-off)");
    action("server-off")->trigger();
    EXPECT_TRUE(faults.active().isEmpty());
    EXPECT_EQ(menu.title(), "&Faults");
}

TEST_F(FaultMenuTest, ShowsWhatAScriptHasBroken) {
    QString error;
    faults.begin(*parseFaultOrder({"bus-slow", "7ms"}, &error));
    EXPECT_TRUE(action("bus-slow")->isChecked());
    action("Mend all")->trigger();
    EXPECT_FALSE(action("bus-slow")->isChecked());
}

TEST_F(FaultMenuTest, FaultThatStrikesAtOnceIsOver) {
    action("controller-brown-out")->trigger();
    EXPECT_FALSE(action("controller-brown-out")->isChecked());
    EXPECT_EQ(menu.title(), "&Faults");
}

} // namespace
} // namespace panel
