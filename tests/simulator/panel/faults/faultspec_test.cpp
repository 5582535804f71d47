#include "faultspec.h"

#include <gmock/gmock.h>

namespace panel {
namespace {

using testing::HasSubstr;

std::optional<FaultSpec> parsed(const QString& text, QString* error) {
    return parseFaultSpec(text.split(' ', Qt::SkipEmptyParts), error);
}

FaultSpec specOf(const QString& text) {
    QString error;
    const auto spec = parsed(text, &error);
    EXPECT_TRUE(spec) << error.toStdString();
    return spec.value_or(FaultSpec());
}

std::string mistakeIn(const QString& text) {
    QString error;
    return parsed(text, &error) ? "" : error.toStdString();
}

TEST(FaultSpec, EveryFaultOfTheTableNeedsNoArguments) {
    for (const FaultEntry& entry : faultTable()) {
        EXPECT_EQ(specOf(entry.name).breaks, entry.breaks) << entry.name.toStdString();
    }
    QStringList names = faultNames();
    EXPECT_EQ(names.removeDuplicates(), 0);
}

TEST(FaultSpec, CountsMessages) {
    EXPECT_EQ(specOf("bus-fails-at").number, 1U);
    EXPECT_FALSE(specOf("bus-fails-at 12").bursts);
    EXPECT_EQ(specOf("bus-corrupts burst 12").number, 12U);
    EXPECT_TRUE(specOf("bus-corrupts burst").bursts);
}

TEST(FaultSpec, TakesTimesWordsAndChances) {
    EXPECT_EQ(specOf("bus-slow").time.count(), 5);
    EXPECT_EQ(specOf("bus-slow 70ms").time.count(), 70);
    EXPECT_EQ(specOf("controller-slow-boot 2s").time.count(), 2000);
    EXPECT_EQ(specOf("controller-wrong-id 00011008").word, 0x11008U);
    EXPECT_EQ(specOf("bus-fails-randomly 5 77").number, 5U);
    EXPECT_EQ(specOf("bus-fails-randomly 5 77").seed, 77U);
}

TEST(FaultSpec, HandsTheServersFaultsOn) {
    const FaultSpec spec = specOf("server-late 70ms for DATA? after 2s");
    EXPECT_EQ(spec.breaks, Breaks::Server);
    EXPECT_EQ(spec.rule.fault, server::Fault::Late);
    EXPECT_EQ(spec.rule.delay.count(), 70);
    EXPECT_EQ(spec.rule.command, "DATA?");
    EXPECT_EQ(spec.after.count(), 2000);
    EXPECT_EQ(spec.text, "server-late 70ms for DATA? after 2s");
}

TEST(FaultSpec, SaysWhatIsWrong) {
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

TEST(FaultSpec, HelpHasALineForEachFault) {
    const QString help = faultHelp();
    for (const FaultEntry& entry : faultTable()) {
        EXPECT_TRUE(help.contains("  " + entry.name + ' ')) << entry.name.toStdString();
    }
    EXPECT_EQ(help.count("\n  ") - help.count("\n   "), faultNames().size() - 1);
}

} // namespace
} // namespace panel
