#include "faultorder.h"

#include <gmock/gmock.h>

namespace panel {
namespace {

using testing::HasSubstr;

std::optional<FaultOrder> parsed(const QString& text, QString* error) {
    return parseFaultOrder(text.split(' ', Qt::SkipEmptyParts), error);
}

FaultOrder orderOf(const QString& text) {
    QString error;
    const auto order = parsed(text, &error);
    EXPECT_TRUE(order) << error.toStdString();
    return order.value_or(FaultOrder());
}

std::string mistakeIn(const QString& text) {
    QString error;
    return parsed(text, &error) ? "" : error.toStdString();
}

TEST(FaultOrder, EveryFaultOfTheTableNeedsNoArguments) {
    for (const FaultEntry& entry : faultTable()) {
        EXPECT_EQ(orderOf(entry.name).breaks, entry.breaks) << entry.name.toStdString();
    }
    QStringList names = faultNames();
    EXPECT_EQ(names.removeDuplicates(), 0);
}

TEST(FaultOrder, CountsMessages) {
    EXPECT_EQ(orderOf("bus-fails-at").number, 1U);
    EXPECT_FALSE(orderOf("bus-fails-at 12").bursts);
    EXPECT_EQ(orderOf("bus-corrupts burst 12").number, 12U);
    EXPECT_TRUE(orderOf("bus-corrupts burst").bursts);
}

TEST(FaultOrder, TakesTimesWordsAndChances) {
    EXPECT_EQ(orderOf("bus-slow").time.count(), 5);
    EXPECT_EQ(orderOf("bus-slow 70ms").time.count(), 70);
    EXPECT_EQ(orderOf("controller-slow-boot 2s").time.count(), 2000);
    EXPECT_EQ(orderOf("controller-wrong-id 00011008").word, 0x11008U);
    EXPECT_EQ(orderOf("bus-fails-randomly 5 77").number, 5U);
    EXPECT_EQ(orderOf("bus-fails-randomly 5 77").seed, 77U);
}

TEST(FaultOrder, HandsTheServersFaultsOn) {
    const FaultOrder order = orderOf("server-late 70ms for DATA? after 2s");
    EXPECT_EQ(order.breaks, Breaks::Server);
    EXPECT_EQ(order.rule.fault, server::Fault::Late);
    EXPECT_EQ(order.rule.delay.count(), 70);
    EXPECT_EQ(order.rule.command, "DATA?");
    EXPECT_EQ(order.after.count(), 2000);
    EXPECT_EQ(order.text, "server-late 70ms for DATA? after 2s");
}

TEST(FaultOrder, SaysWhatIsWrong) {
    EXPECT_THAT(mistakeIn("bus-ded"),
                HasSubstr("there is no fault \"bus-ded\"; there is bus-dead"));
    EXPECT_THAT(mistakeIn("bus-slow 5"), HasSubstr("\"bus-slow [TIME] [after TIME]\""));
    for (const char* const wrong :
         {"", "bus-dead 1", "bus-fails-at 0", "bus-fails-at x", "bus-fails-randomly 101",
          "bus-slow 1s 2s", "controller-wrong-id xyz", "bus-dead after 5", "server-late 5",
          "server-none", "server-cut for", "after 5s"}) {
        EXPECT_NE(mistakeIn(wrong), "") << wrong;
    }
}

TEST(FaultOrder, HelpHasALineForEachFault) {
    const QString help = faultHelp();
    for (const FaultEntry& entry : faultTable()) {
        EXPECT_TRUE(help.contains("  " + entry.name + ' ')) << entry.name.toStdString();
    }
    EXPECT_EQ(help.count("\n  ") - help.count("\n   "), faultNames().size() - 1);
}

} // namespace
} // namespace panel
